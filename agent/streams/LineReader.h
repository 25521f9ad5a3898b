#pragma once

#include <cstddef>
#include <string_view>

#include "agent/streams/LineBuffer.h"
#include "agent/streams/StopSignals.h"

namespace QosAgent {

/// Reads a file line by line and waits for each. A line ends with `\n` or `\r\n`, the last one
/// perhaps with the file.
class LineReader {
public:
    /// Of a line longer than `mostBytes`, no more is kept than shows that it is.
    LineReader(int fd, std::size_t mostBytes, const StopSignals& stop);

    /// Goes on to the next line. Returns false at the end, when a signal asks to stop, and on an
    /// error.
    bool next();
    /// The number of this line, from 1.
    std::size_t number() const { return lines_.number(); }
    /// This line without what ends it. Valid until the next call of `next`.
    std::string_view line() const { return lines_.line(); }
    /// `errno` of the read that failed; 0 while none has.
    int error() const { return error_; }

private:
    /// Reads more into the buffer; false when there is no more.
    bool fill();

    int fd_;
    const StopSignals& stop_;
    LineBuffer lines_;
    int error_ = 0;
};

}  // namespace QosAgent
