#pragma once

#include <cstddef>

namespace QosAgent {

/// What a stream of the process allows besides lines of text: nothing, unless it is a terminal.
struct Terminal {
    std::size_t columns = 0;  ///< 0: it is no terminal, and lines may have any length
    bool canRedraw = false;   ///< a line can be drawn over
    bool hasColour = false;

    bool isThere() const { return columns != 0; }
};

/// Asks the stream, and the environment: `TERM=dumb` redraws nothing and has no colour, neither has
/// one whose user has set `NO_COLOR`. A terminal that does not tell its width has 80 columns.
Terminal terminalOn(int fd);

}  // namespace QosAgent
