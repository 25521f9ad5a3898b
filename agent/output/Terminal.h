#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace QosAgent {

/// The capabilities of a stream of the process. None, unless it is a terminal.
struct Terminal {
    std::size_t columns = 0;  ///< 0: not a terminal; lines may have any length
    bool canRedraw = false;   ///< a line can be redrawn
    bool hasColour = false;

    bool isThere() const { return columns != 0; }
};

/// The sequences that switch a colour on, and all colours off.
inline constexpr std::string_view kBold = "\033[1m";
inline constexpr std::string_view kBoldRed = "\033[1;31m";
inline constexpr std::string_view kBoldMagenta = "\033[1;35m";
inline constexpr std::string_view kPlain = "\033[0m";

/// Returns the text in this colour; unchanged if the stream has no colour.
std::string painted(std::string_view colour, std::string_view text, bool hasColour);

/// Returns the capabilities of a stream. In the environment, `TERM=dumb` means neither redrawing
/// nor colour, `NO_COLOR` no colour. A terminal that does not report its width has 80 columns.
Terminal terminalOn(int fd);

}  // namespace QosAgent
