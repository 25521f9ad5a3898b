#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace QosAgent {

/// `text` in double quotes, fit for a message of one line: at most its first `mostBytes` bytes, cut
/// between characters and then followed by `...`, with control characters escaped as in JSON.
std::string excerpt(std::string_view text, std::size_t mostBytes = 60);

/// One byte of a text for a message: `'x'` if it is printable ASCII, else `byte 0x0a`.
std::string describeByte(char byte);

}  // namespace QosAgent
