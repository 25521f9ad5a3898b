#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/Acl/AclType.h"
#include "platform/Orin/Export.h"
#include "platform/Orin/Ptr.h"
#include "platform/Orin/String.h"
#include "platform/OvSlab/Slab.h"
#include "platform/Qos/ClassMapMatchOption.h"
#include "platform/Qos/ForwardingGroupNameToTcMap.h"
#include "platform/QosOc/ClassifierType.h"

/// The names that connect class maps, access lists and policy maps with OpenConfig classifiers.
///
/// Class map and access list of term T of classifier C: `openconfig:C:T`. Policy map of the IPv4
/// classifier V4 and the IPv6 classifier V6: `openconfig:V4:V6`; one of the two may be empty.
/// Within a part `%` is written `%25` and `:` is written `%3A`. No other escape is valid.
///
/// All functions are pure. The result of decoding a text is kept with the text, so that decoding it
/// again costs next to nothing.
namespace QosOc {

/// The term that an object belongs to. Both parts are empty if the object was not made from a term.
struct ClassifierKey {
    Orin::String classifierName;
    Orin::String termId;

    bool isTerm() const noexcept { return !classifierName.empty() && !termId.empty(); }
    friend bool operator==(const ClassifierKey&, const ClassifierKey&) = default;
};

/// The classifiers of a policy map; either may be empty.
struct PmapClassifiers {
    Orin::String ipv4ClassifierName;
    Orin::String ipv6ClassifierName;

    friend bool operator==(const PmapClassifiers&, const PmapClassifiers&) = default;
};

/// Both readings of a decoded name: as a term's name and as a policy map's.
struct PLATFORM_API DecodedName : Orin::TextNote, OvSlab::Slabbed<DecodedName> {
    static constexpr std::string_view kTypeName = "QosOc::DecodedName";

    ClassifierKey classifierKey;
    PmapClassifiers pmapClassifiers;

    constexpr DecodedName() noexcept = default;
    explicit DecodedName(PmapClassifiers&& parts) noexcept;
    static const DecodedName kNone;
    static std::unique_ptr<DecodedName> of(std::string_view name);
};
/// Returns the decoded name. The first call decodes it. The reference is valid as long as any copy
/// of the name exists.
inline const DecodedName& decodedName(const Orin::String& name) {
    return name.empty() ? DecodedName::kNone : name.note(DecodedName::of);
}
const DecodedName& decodedName(Orin::String&& name) = delete;

/// Returns the term that a class map or access list of this name was made from. The reference is
/// valid as long as any copy of the name exists.
inline const ClassifierKey& classifierKeyFromConfigObjName(const Orin::String& name) {
    return decodedName(name).classifierKey;
}
/// The same for a temporary name: returns a copy.
inline ClassifierKey classifierKeyFromConfigObjName(Orin::String&& name) {
    return decodedName(name).classifierKey;
}
/// Returns the name of the classifier that an ordinary class map means, which is the class map's
/// name. Empty for an empty name, for `class-default`, and for names that begin with `openconfig:`.
PLATFORM_API Orin::String classifierNameFromClassName(const Orin::String& className);
/// Returns the classifiers of a policy map; both are empty if it was not made from classifiers. The
/// reference is valid as long as any copy of the name exists.
inline const PmapClassifiers& classifiersFromPmapName(const Orin::String& pmapName) {
    return decodedName(pmapName).pmapClassifiers;
}
/// The same for a temporary name: returns a copy.
inline PmapClassifiers classifiersFromPmapName(Orin::String&& pmapName) {
    return decodedName(pmapName).pmapClassifiers;
}

/// Returns the name of the class map and the access list of a term; the inverse of
/// `classifierKeyFromConfigObjName`. Precondition: neither part is empty.
PLATFORM_API std::string configObjName(std::string_view classifierName, std::string_view termId);
/// Returns the name of the policy map of two classifiers, one of which may be empty; the inverse of
/// `classifiersFromPmapName`.
PLATFORM_API std::string pmapName(std::string_view ipv4ClassifierName,
                                  std::string_view ipv6ClassifierName);

/// Returns IPv6 for `matchIpv6AccessGroup`, IPv4 for all others.
constexpr Classifier::Type classifierTypeFromMatchOption(Qos::ClassMapMatchOption option) noexcept {
    return option == Qos::ClassMapMatchOption::matchIpv6AccessGroup ? Classifier::Type::IPV6
                                                                    : Classifier::Type::IPV4;
}
/// Returns IPv6 for `ipv6`, IPv4 otherwise.
constexpr Classifier::Type classifierTypeFromAclType(Acl::AclType aclType) noexcept {
    return aclType == Acl::AclType::ipv6 ? Classifier::Type::IPV6 : Classifier::Type::IPV4;
}

/// Returns the forwarding group to which the map assigns the traffic class: the least name in byte
/// order if there are several, empty if there is none or no map.
inline Orin::String targetGroupFromTc(unsigned int tc, const Qos::ForwardingGroupNameToTcMap* map) {
    return map == nullptr ? Orin::String() : map->forwardingGroup(tc);
}
inline Orin::String targetGroupFromTc(unsigned int tc,
                                      Orin::Ptr<const Qos::ForwardingGroupNameToTcMap> map) {
    return targetGroupFromTc(tc, map.get());
}

}  // namespace QosOc
