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

/// The place of the byte at `offset`; lines end at `\n`, which is the last byte of its line. An
/// offset past the end is the end's. Reads the text up to there: for one refusal, not for each key.
TextPlace placeOf(std::string_view text, std::size_t offset);

}  // namespace QosAgent
