#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace QosAgent {

/// The text before the values of the classifier's own family.
inline constexpr std::string_view kDscpTitle = "dscp ";

/// Formats the match of a term for people: `dscp 46(EF)` or `dscp 8-15; ipv6 dscp 1`; empty if it
/// matches nothing. `classifierType` is `IPV4` or `IPV6`: values of the other family are preceded
/// by its name.
std::string matchText(std::string_view classifierType, std::span<const std::uint8_t> ipv4,
                      std::span<const std::uint8_t> ipv6);

}  // namespace QosAgent
