#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace QosAgent {

/// `text` in double quotes, fit for a message of one line: at most its first `mostBytes` bytes, cut
/// between characters and then followed by `...`, escaped as in JSON and `visible`.
std::string excerpt(std::string_view text, std::size_t mostBytes = 60);

/// Returns what stands around the byte at `offset` of a line, without quotes: all of a line of 160
/// bytes or less, else 160 bytes, cut between characters, with `...` where the line goes on.
/// Escapes nothing.
std::string excerptAround(std::string_view line, std::size_t offset);

/// One byte of a text for a message: `'x'` if it is printable ASCII, else `byte 0x0a`.
std::string describeByte(char byte);

}  // namespace QosAgent
