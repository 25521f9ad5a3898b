#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace QosAgent {

/// The width of a text on a terminal: its characters, not bytes; each is taken to be one column
/// wide.
std::size_t widthOf(std::string_view text);

/// Cuts a text into lines of at most `width` characters; all but the first begin with `indent`
/// spaces, but at most half of the width. Breaks behind one of `signs`, or within a word where a
/// line has none. Nothing of the text is lost.
std::vector<std::string> folded(std::string_view text, std::size_t width, std::size_t indent,
                                std::string_view signs);

}  // namespace QosAgent
