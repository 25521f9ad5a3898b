#pragma once

#include <cstddef>
#include <iterator>
#include <string_view>

namespace QosAgent {

/// Feeds a text to the lexer and counts the bytes that the lexer has consumed. The text is followed
/// by one space, so that the lexer has always consumed one byte more than the number it reports,
/// even at the end of the text. The caller must keep the text and the count alive.
class CountingIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = char;

    CountingIterator(std::string_view text, std::size_t at, std::size_t* taken)
        : text_(text), at_(at), taken_(taken) {}

    char operator*() const { return at_ < text_.size() ? text_[at_] : ' '; }
    CountingIterator& operator++() {
        *taken_ = ++at_;
        return *this;
    }
    bool operator==(const CountingIterator& other) const { return at_ == other.at_; }

private:
    std::string_view text_;
    std::size_t at_;
    std::size_t* taken_;
};

}  // namespace QosAgent
