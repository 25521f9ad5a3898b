#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace QosAgent {

/// Returns `text` in double quotes for a message of one line, escaped as in JSON and by `visible`.
/// If it is longer than `mostBytes`, cuts it between characters and appends `...`.
std::string excerpt(std::string_view text, std::size_t mostBytes = 60);

/// Returns the text around the byte at `offset` of a line, without quotes and unescaped. Returns
/// the whole line if it has at most 160 bytes, otherwise 160 bytes of it, cut between characters
/// and with `...` at each cut.
std::string excerptAround(std::string_view line, std::size_t offset);

/// Returns one byte of a text for a message: `'x'` if it is printable ASCII, otherwise `byte 0x0a`.
std::string describeByte(char byte);

}  // namespace QosAgent
