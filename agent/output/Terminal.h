#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace QosAgent {

/// What a stream of the process allows besides lines of text: nothing, unless it is a terminal.
struct Terminal {
    std::size_t columns = 0;  ///< 0: it is no terminal, and lines may have any length
    bool canRedraw = false;   ///< a line can be drawn over
    bool hasColour = false;

    bool isThere() const { return columns != 0; }
};

/// What switches a colour on, and all colours off.
inline constexpr std::string_view kBold = "\033[1m";
inline constexpr std::string_view kBoldRed = "\033[1;31m";
inline constexpr std::string_view kBoldMagenta = "\033[1;35m";
inline constexpr std::string_view kPlain = "\033[0m";

/// The text in that colour, or as it is where there is no colour.
std::string painted(std::string_view colour, std::string_view text, bool hasColour);

/// Asks the stream, and the environment: `TERM=dumb` redraws nothing and has no colour, neither has
/// one whose user has set `NO_COLOR`. A terminal that does not tell its width has 80 columns.
Terminal terminalOn(int fd);

}  // namespace QosAgent
