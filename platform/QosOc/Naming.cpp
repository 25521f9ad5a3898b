#include "platform/QosOc/Naming.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace QosOc {
namespace {

constexpr std::string_view kPrefix = "openconfig:";
constexpr std::string_view kClassDefault = "class-default";

/// Returns the character that an escape means; 0 if it is not a valid escape.
char escaped(std::string_view escape) noexcept {
    if (escape == "%25") return '%';
    if (escape == "%3A") return ':';
    return 0;
}

/// Returns the unescaped part of a name; nothing if it is not valid.
std::optional<std::string> unescaped(std::string_view part) {
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
    return text;
}

/// Returns the shared text of a name's first part. Successive names mostly have equal ones.
const Orin::String& firstText(std::string_view part) {
    thread_local Orin::String last;
    if (last.view() != part) last = Orin::String::shared(part);
    return last;
}

/// Returns the texts of two parts; both are empty if one is not valid.
PmapClassifiers textsOf(std::string_view first, std::string_view second, bool isEscaped) {
    if (!isEscaped) return {firstText(first), Orin::String::shared(second)};
    const auto firstPart = unescaped(first);
    const auto secondPart = unescaped(second);
    if (!firstPart || !secondPart) return {};
    return {firstText(*firstPart), Orin::String::shared(*secondPart)};
}

PmapClassifiers classifiersIn(std::string_view name) {
    if (!name.starts_with(kPrefix)) return {};
    name.remove_prefix(kPrefix.size());
    const std::size_t separator = name.find(':');
    if (separator == name.npos || name.find(':', separator + 1) != name.npos) return {};
    const bool isEscaped = name.find('%') != name.npos;
    return textsOf(name.substr(0, separator), name.substr(separator + 1), isEscaped);
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

DecodedName::DecodedName(PmapClassifiers&& parts) noexcept
    : classifierKey(parts.ipv4ClassifierName.empty() || parts.ipv6ClassifierName.empty()
                        ? ClassifierKey{}
                        : ClassifierKey{parts.ipv4ClassifierName, parts.ipv6ClassifierName}),
      pmapClassifiers(std::move(parts)) {}

std::unique_ptr<DecodedName> DecodedName::of(std::string_view name) {
    return std::make_unique<DecodedName>(classifiersIn(name));
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
