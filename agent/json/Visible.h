#pragma once

#include <string>
#include <string_view>

namespace QosAgent {

/// `text` for people to read: characters that a terminal obeys, that turn the direction of the text
/// around them, or that nobody sees are written as `\u202e` (`\U000e0041` above U+FFFF). These are
/// the control characters (U+0000 to U+001F, U+007F to U+009F), the line separators, the marks,
/// embeddings, overrides and isolates of bidirectional text, and what has no width but the joiners
/// U+200C and U+200D, which some scripts need. A byte 0x80 to 0x9f that belongs to no UTF-8
/// character is written as `\x9b`. Everything else stays as it is, `\` too: a caller to whom the
/// difference matters doubles it first. Output for programs must not pass through here.
std::string visible(std::string_view text);
/// A name for people to read, distinct for distinct names: `\` is written as `\\`, line ends and
/// the like as in C, the rest as `visible`.
std::string visibleName(std::string_view name);

}  // namespace QosAgent
