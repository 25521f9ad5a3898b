#pragma once

#include <cstddef>
#include <string_view>

namespace QosAgent {

/// A place in a text for people: both count from 1, the column counts bytes.
struct TextPlace {
    std::size_t line;
    std::size_t column;

    bool operator==(const TextPlace&) const = default;
};

inline constexpr TextPlace kTextBegin{1, 1};

/// Where a walk stands that was at `place` and has passed these bytes.
TextPlace placeAfter(const TextPlace& place, std::string_view passed);

/// The place of the byte at `offset`; lines end at `\n`, which is the last byte of its line. An
/// offset past the end is the end's. Reads the text up to there: for one refusal, not for each key.
TextPlace placeOf(std::string_view text, std::size_t offset);

}  // namespace QosAgent
