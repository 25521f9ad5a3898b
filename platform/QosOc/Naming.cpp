#include "platform/QosOc/Naming.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace QosOc {
namespace {

constexpr std::string_view kPrefix = "openconfig:";
constexpr std::string_view kClassDefault = "class-default";

/// What a name says when it was made from classifiers: both readings of it.
struct DecodedName : Orin::TextNote {
    ClassifierKey classifierKey;
    PmapClassifiers pmapClassifiers;
};

/// The character that an escape stands for; 0 when it is none.
char escaped(std::string_view escape) noexcept {
    if (escape == "%25") return '%';
    if (escape == "%3A") return ':';
    return 0;
}

std::optional<std::string> decodedPart(std::string_view part) {
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

std::unique_ptr<DecodedName> decoded(std::string_view name) {
    auto note = std::make_unique<DecodedName>();
    if (!name.starts_with(kPrefix)) return note;
    name.remove_prefix(kPrefix.size());
    const std::size_t separator = name.find(':');
    if (separator == name.npos || name.find(':', separator + 1) != name.npos) return note;
    const auto first = decodedPart(name.substr(0, separator));
    const auto second = decodedPart(name.substr(separator + 1));
    if (!first || !second || (first->empty() && second->empty())) return note;
    note->pmapClassifiers = {Orin::String::shared(*first), Orin::String::shared(*second)};
    if (!first->empty() && !second->empty())
        note->classifierKey = {note->pmapClassifiers.ipv4ClassifierName,
                               note->pmapClassifiers.ipv6ClassifierName};
    return note;
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

const ClassifierKey& classifierKeyFromConfigObjName(const Orin::String& name) {
    static const ClassifierKey none;
    return name.empty() ? none : name.note(decoded).classifierKey;
}

Orin::String classifierNameFromClassName(const Orin::String& className) {
    const std::string_view name = className;
    if (name == kClassDefault || name.starts_with(kPrefix)) return {};
    return className;
}

const PmapClassifiers& classifiersFromPmapName(const Orin::String& pmapName) {
    static const PmapClassifiers none;
    return pmapName.empty() ? none : pmapName.note(decoded).pmapClassifiers;
}

std::string configObjName(std::string_view classifierName, std::string_view termId) {
    return encoded(classifierName, termId);
}

std::string pmapName(std::string_view ipv4ClassifierName, std::string_view ipv6ClassifierName) {
    return encoded(ipv4ClassifierName, ipv6ClassifierName);
}

Classifier::Type classifierTypeFromMatchOption(Qos::ClassMapMatchOption option) noexcept {
    return option == Qos::ClassMapMatchOption::matchIpv6AccessGroup ? Classifier::Type::IPV6
                                                                    : Classifier::Type::IPV4;
}

Classifier::Type classifierTypeFromAclType(Acl::AclType aclType) noexcept {
    return aclType == Acl::AclType::ipv6 ? Classifier::Type::IPV6 : Classifier::Type::IPV4;
}

Orin::String targetGroupFromTc(std::uint32_t tc,
                               const Orin::Ptr<const Qos::ForwardingGroupNameToTcMap>& map) {
    return map ? map->forwardingGroup(tc) : Orin::String();
}

}  // namespace QosOc
