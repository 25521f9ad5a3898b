#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace QosAgent {

/// Splits text that is read in pieces into lines. A line ends with `\n` or `\r\n`; the last one may
/// end with the text.
///
///     read into room(), say filled(), then call next() until it returns false
class LineBuffer {
public:
    /// Keeps at most `mostBytes` of a line, and enough more to show that it is longer. The caller
    /// reads pieces of `pieceBytes`.
    explicit LineBuffer(std::size_t mostBytes, std::size_t pieceBytes = std::size_t{64} << 10)
        : mostKept_(mostBytes + 2), piece_(pieceBytes) {}

    /// Returns the buffer for the next piece. Precondition: `next` has returned false.
    std::span<char> room() { return piece_; }
    /// Reports the number of bytes that were read into the buffer.
    void filled(std::size_t count) { rest_ = {piece_.data(), count}; }

    /// Moves to the next line. Returns false if the text read so far has no further complete line.
    bool next();
    /// Must be called at the end of the text. Moves to the text after the last line end. Returns
    /// false if there is none.
    bool last();
    /// Returns the number of this line, from 1.
    std::size_t number() const { return number_; }
    /// Returns this line without its line end. Valid until the next call of another function.
    std::string_view line() const { return line_; }
    /// Moves this line out.
    std::string take() { return std::move(line_); }
    /// Returns the number of bytes of the incomplete line.
    std::size_t heldBytes() const { return isEnded_ ? 0 : line_.size(); }

private:
    void begin();
    void end();

    std::size_t mostKept_;
    std::vector<char> piece_;
    std::string_view rest_;  ///< of the piece
    std::string line_;
    bool isEnded_ = false;
    bool isBegun_ = false;
    std::size_t number_ = 0;
};

}  // namespace QosAgent
