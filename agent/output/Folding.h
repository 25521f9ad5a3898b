#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace QosAgent {

/// Returns the width of a text on a terminal: the number of its characters. Each counts as one
/// column.
std::size_t widthOf(std::string_view text);

/// Splits a text into lines of at most `width` characters. All lines but the first begin with
/// `indent` spaces, at most half of the width. Breaks a line after one of `signs`, or within a word
/// if it has none. Keeps all characters.
std::vector<std::string> folded(std::string_view text, std::size_t width, std::size_t indent,
                                std::string_view signs);

}  // namespace QosAgent
