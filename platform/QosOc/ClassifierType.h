#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "platform/Vex/NamedEnum.h"

namespace QosOc::Classifier {

/// The address family of a classifier: `classifier/config/type` of openconfig-qos, as far as this
/// system supports it.
enum class Type : std::uint8_t { IPV4 = 0, IPV6 = 1 };

inline constexpr std::array kTypeNames{
    Vex::EnumName{0, "IPV4"},
    Vex::EnumName{1, "IPV6"},
};
constexpr std::span<const Vex::EnumName> enumNames(Type) {
    return kTypeNames;
}
/// A family without a name does not occur in text.
constexpr void isNamedOnly(Type) {}

}  // namespace QosOc::Classifier
