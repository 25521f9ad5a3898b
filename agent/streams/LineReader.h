#pragma once

#include <cstddef>
#include <string_view>

#include "agent/streams/LineBuffer.h"
#include "agent/streams/StopSignals.h"

namespace QosAgent {

/// Reads a file line by line; blocks until a line is complete. A line ends with `\n` or `\r\n`; the
/// last one may end with the file.
class LineReader {
public:
    /// Of a line that is longer than `mostBytes`, keeps only enough to show that it is.
    LineReader(int fd, std::size_t mostBytes, const StopSignals& stop);

    /// Moves to the next line. Returns false at the end, on an error, and if a signal asked to
    /// stop.
    bool next();
    /// Returns the number of this line, from 1.
    std::size_t number() const { return lines_.number(); }
    /// Returns this line without its line end. Valid until the next call of `next`.
    std::string_view line() const { return lines_.line(); }
    /// Returns the `errno` of a failed read; 0 if none failed.
    int error() const { return error_; }

private:
    /// Reads more into the buffer. Returns false if there is no more.
    bool fill();

    int fd_;
    const StopSignals& stop_;
    LineBuffer lines_;
    int error_ = 0;
};

}  // namespace QosAgent
