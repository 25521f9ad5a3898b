#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "agent/database/Path.h"
#include "platform/Orin/String.h"

namespace QosAgent {

/// The place of something that the OpenConfig configuration makes: composed only when it is asked
/// for, since hardly anybody does. Refers to the names that it was made of.
class Place {
public:
    Place(std::string_view collection, const Orin::String& name, std::string_view part = {})
        : collection_(collection), name_(&name), part_(part) {}
    explicit Place(std::string_view path) : collection_(path) {}

    /// A member of a collection within the object, or a part of that member.
    Place member(std::string_view part, const Orin::String& key,
                 std::string_view inner = {}) const {
        Place place = *this;
        place.part_ = part;
        place.key_ = &key;
        place.inner_ = inner;
        return place;
    }
    Place member(std::string_view part, std::uint32_t key) const {
        Place place = *this;
        place.part_ = part;
        place.number_ = key;
        place.hasNumber_ = true;
        return place;
    }
    Place part(std::string_view part) const {
        Place place = *this;
        (key_ == nullptr ? place.part_ : place.inner_) = part;
        return place;
    }
    /// As `parsePath` reads it.
    std::string path() const {
        std::string path(collection_);
        if (name_ != nullptr) appendKeyStep(path, *name_);
        appendPart(path, part_);
        if (key_ != nullptr) appendKeyStep(path, *key_);
        if (hasNumber_) path.append("/").append(std::to_string(number_));
        appendPart(path, inner_);
        return path;
    }

private:
    static void appendPart(std::string& path, std::string_view part) {
        if (!part.empty()) path.append("/").append(part);
    }

    std::string_view collection_;
    const Orin::String* name_ = nullptr;
    std::string_view part_ = {};
    const Orin::String* key_ = nullptr;
    std::uint32_t number_ = 0;
    bool hasNumber_ = false;
    std::string_view inner_ = {};
};

/// The collections that have what the OpenConfig configuration makes, and the types that hold them.
namespace Places {
inline constexpr std::string_view kClassMapType = "qos/status/cmapTypeStatus/mapQos";
inline constexpr std::string_view kPolicyMapType = "qos/status/pmapTypeStatus/mapQos";
inline constexpr std::string_view kIpType = "acl/config/cli/aclTypeConfig/ipv4";
inline constexpr std::string_view kIp6Type = "acl/config/cli/aclTypeConfig/ipv6";
inline constexpr std::string_view kGroupMap = "qos/input/config/cli/forwardingGroupNameToTcMap";
inline constexpr std::string_view kGroups = "qos/input/config/cli/forwardingGroupNameToTcMap/tc";
inline constexpr std::string_view kClassMaps = "qos/status/cmapTypeStatus/mapQos/cmapStatus";
inline constexpr std::string_view kPolicyMaps = "qos/status/pmapTypeStatus/mapQos/pmapStatus";
inline constexpr std::string_view kIpLists = "acl/config/cli/aclTypeConfig/ipv4/aclConfig";
inline constexpr std::string_view kIp6Lists = "acl/config/cli/aclTypeConfig/ipv6/aclConfig";
inline constexpr std::string_view kClassifiers = "qos/openconfig/config/classifiers/classifier";
}  // namespace Places

}  // namespace QosAgent
