#include "platform/QosOc/Naming.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace QosOc {
namespace {

constexpr std::string_view kPrefix = "openconfig:";
constexpr std::string_view kClassDefault = "class-default";

/// The character that an escape stands for; 0 when it is none.
char escaped(std::string_view escape) noexcept {
    if (escape == "%25") return '%';
    if (escape == "%3A") return ':';
    return 0;
}

std::optional<Orin::String> decodedPart(std::string_view part) {
    if (part.find('%') == part.npos) return Orin::String::shared(part);
    std::string text;
    while (!part.empty()) {
        char c = part.front();
        std::size_t length = 1;
        if (c == '%') {
            length = 3;
            c = escaped(part.substr(0, length));
            if (c == 0) return std::nullopt;
        }
        text += c;
        part.remove_prefix(length);
    }
    return Orin::String::shared(text);
}

void appendEncoded(std::string& name, std::string_view part) {
    for (const char c : part) {
        if (c == '%')
            name += "%25";
        else if (c == ':')
            name += "%3A";
        else
            name += c;
    }
}

std::string encoded(std::string_view first, std::string_view second) {
    std::string name(kPrefix);
    name.reserve(kPrefix.size() + first.size() + 1 + second.size());
    appendEncoded(name, first);
    name += ':';
    appendEncoded(name, second);
    return name;
}

}  // namespace

constinit const DecodedName DecodedName::kNone{};

std::unique_ptr<DecodedName> DecodedName::of(std::string_view name) {
    auto note = std::make_unique<DecodedName>();
    if (!name.starts_with(kPrefix)) return note;
    name.remove_prefix(kPrefix.size());
    const std::size_t separator = name.find(':');
    if (separator == name.npos || name.find(':', separator + 1) != name.npos) return note;
    const auto first = decodedPart(name.substr(0, separator));
    const auto second = decodedPart(name.substr(separator + 1));
    if (!first || !second || (first->empty() && second->empty())) return note;
    note->pmapClassifiers = {*first, *second};
    if (!first->empty() && !second->empty())
        note->classifierKey = {note->pmapClassifiers.ipv4ClassifierName,
                               note->pmapClassifiers.ipv6ClassifierName};
    return note;
}

Orin::String classifierNameFromClassName(const Orin::String& className) {
    const std::string_view name = className;
    if (name == kClassDefault || name.starts_with(kPrefix)) return {};
    return className;
}

std::string configObjName(std::string_view classifierName, std::string_view termId) {
    return encoded(classifierName, termId);
}

std::string pmapName(std::string_view ipv4ClassifierName, std::string_view ipv6ClassifierName) {
    return encoded(ipv4ClassifierName, ipv6ClassifierName);
}

}  // namespace QosOc
