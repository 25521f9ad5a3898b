#pragma once

#include <cstddef>
#include <string_view>

namespace QosAgent {

/// A place in a text: line and column, both from 1. The column counts bytes.
struct TextPlace {
    std::size_t line;
    std::size_t column;

    bool operator==(const TextPlace&) const = default;
};

inline constexpr TextPlace kTextBegin{1, 1};

/// Returns the place after these bytes, which begin at `place`.
TextPlace placeAfter(const TextPlace& place, std::string_view passed);

/// Returns the place of the byte at `offset`. A `\n` is the last byte of its line. An offset beyond
/// the end means the end. Reads the text up to the offset: use it for a refusal, not for each key.
TextPlace placeOf(std::string_view text, std::size_t offset);

}  // namespace QosAgent
