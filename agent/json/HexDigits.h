#pragma once

#include <string_view>

namespace QosAgent {

/// The hexadecimal digits, by their value.
inline constexpr std::string_view kHexDigits = "0123456789abcdef";

}  // namespace QosAgent
