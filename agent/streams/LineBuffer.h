#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace QosAgent {

/// Splits text into lines as it is read piece by piece. A line ends with `\n` or `\r\n`, the last
/// one perhaps with the text.
///
///     read into room(), say filled(), then call next() until it returns false
class LineBuffer {
public:
    /// Keeps no more of a line than `mostBytes` and what shows that it is longer. Text is read in
    /// pieces of `pieceBytes`.
    LineBuffer(std::size_t mostBytes, std::size_t pieceBytes)
        : mostKept_(mostBytes + 2), piece_(pieceBytes) {}

    /// Where to read the next piece to. Valid once `next` has returned false.
    std::span<char> room() { return piece_; }
    /// So many bytes were read to there.
    void filled(std::size_t count) { rest_ = {piece_.data(), count}; }

    /// Goes on to the next line. Returns false if the text read so far holds no whole one.
    bool next();
    /// At the end of the text: goes on to what stands behind the last line end. Returns false if
    /// nothing does.
    bool last();
    /// The number of this line, from 1.
    std::size_t number() const { return number_; }
    /// This line without what ends it. Valid until the next call of anything else.
    std::string_view line() const { return line_; }
    /// Moves the line out.
    std::string take() { return std::move(line_); }
    /// How many bytes are held of a line that has not ended yet.
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
