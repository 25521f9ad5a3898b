#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "platform/Vex/NamedEnum.h"

namespace Qos {

/// The packet property that a class map matches.
enum class ClassMapMatchOption : std::uint32_t {
    matchIpAccessGroup = 0,
    matchIpv6AccessGroup = 1,
    matchMacAccessGroup = 2,
    matchDscp = 3,
    matchPrecedence = 4,
    matchCos = 5,
    matchVlan = 6,
};

inline constexpr std::array kClassMapMatchOptionNames{
    Vex::EnumName{0, "matchIpAccessGroup"}, Vex::EnumName{1, "matchIpv6AccessGroup"},
    Vex::EnumName{2, "matchMacAccessGroup"}, Vex::EnumName{3, "matchDscp"},
    Vex::EnumName{4, "matchPrecedence"}, Vex::EnumName{5, "matchCos"},
    Vex::EnumName{6, "matchVlan"},
};
constexpr std::span<const Vex::EnumName> enumNames(ClassMapMatchOption) {
    return kClassMapMatchOptionNames;
}

}  // namespace Qos
