#pragma once

#include <string>
#include <string_view>

namespace QosAgent {

/// Returns `text` made safe for a terminal. Control characters, characters that change the
/// direction of text, and invisible characters are written as `\u202e` (`\U000e0041` above U+FFFF).
/// These are U+0000 to U+001F and U+007F to U+009F, the line separators, the marks, embeddings,
/// overrides and isolates of bidirectional text, and characters without width, except the joiners
/// U+200C and U+200D, which some scripts need. A byte 0x80 to 0x9f that belongs to no UTF-8
/// character is written as `\x9b`. All other characters are unchanged, including `\`: a caller that
/// needs an unambiguous text must double it first. Do not use this for output that programs read.
std::string visible(std::string_view text);
/// Returns a name made safe for a terminal; different names give different results. `\` is written
/// as `\\`, line ends and similar characters as in C, others as by `visible`.
std::string visibleName(std::string_view name);

}  // namespace QosAgent
