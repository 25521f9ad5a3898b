#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "platform/Vex/NamedEnum.h"

namespace Qos {

/// The purpose of class maps and policy maps.
enum class MapType : std::uint8_t { mapCopp = 0, mapQos = 1, mapPbr = 2 };

inline constexpr std::array kMapTypeNames{
    Vex::EnumName{0, "mapCopp"},
    Vex::EnumName{1, "mapQos"},
    Vex::EnumName{2, "mapPbr"},
};
constexpr std::span<const Vex::EnumName> enumNames(MapType) {
    return kMapTypeNames;
}

}  // namespace Qos
