#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace QosAgent {

/// What stands before the values of the classifier's own family.
inline constexpr std::string_view kDscpTitle = "dscp ";

/// Writes for people what a term matches, `dscp 46(EF)` or `dscp 8-15; ipv6 dscp 1`; empty where it
/// matches nothing. `classifierType` is `IPV4` or `IPV6`: values of another family than that carry
/// the family's name.
std::string matchText(std::string_view classifierType, std::span<const std::uint8_t> ipv4,
                      std::span<const std::uint8_t> ipv6);

}  // namespace QosAgent
