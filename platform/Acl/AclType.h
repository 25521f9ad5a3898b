#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "platform/Vex/NamedEnum.h"

namespace Acl {

/// The protocol that an access list matches.
enum class AclType : std::uint8_t { ipv4 = 0, ipv6 = 1, mac = 2 };

inline constexpr std::array kAclTypeNames{
    Vex::EnumName{0, "ipv4"},
    Vex::EnumName{1, "ipv6"},
    Vex::EnumName{2, "mac"},
};
constexpr std::span<const Vex::EnumName> enumNames(AclType) {
    return kAclTypeNames;
}

}  // namespace Acl
