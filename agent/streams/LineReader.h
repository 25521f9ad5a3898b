#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "agent/streams/StopSignals.h"

namespace QosAgent {

/// Reads a file line by line as the lines come in. A line ends with `\n` or `\r\n`, the last one
/// perhaps with the file.
class LineReader {
public:
    /// Of a line longer than `mostBytes`, no more is kept than shows that it is.
    LineReader(int fd, std::size_t mostBytes, const StopSignals& stop);

    /// Goes on to the next line. False at the end, when a signal asks to stop, and on an error.
    bool next();
    /// Of this line, from 1.
    std::size_t number() const { return number_; }
    /// Without what ends it; valid until the next call of `next`.
    std::string_view line() const { return line_; }
    /// `errno` of the read that failed; 0 while none has.
    int error() const { return error_; }

private:
    /// Reads more into the buffer; false when there is no more.
    bool fill();
    void append(std::string_view piece);

    int fd_;
    std::size_t mostKept_;
    const StopSignals& stop_;
    std::vector<char> buffer_;
    std::string_view rest_;  ///< of the buffer
    std::string line_;
    std::size_t number_ = 0;
    int error_ = 0;
};

}  // namespace QosAgent
