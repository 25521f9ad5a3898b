#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace QosAgent {

/// Formats DSCP values for people, in the given order: `46(EF)`, `32(CS4),34(AF41)`, `8-15`. Three
/// or more consecutive values become a range. The names are those of RFC 2474, RFC 2597 and RFC
/// 3246; most values have none.
std::string dscpText(std::span<const std::uint8_t> values);

}  // namespace QosAgent
