#pragma once

#include <cstddef>
#include <string_view>

#include "agent/json/JsonReader.h"

namespace QosAgent {

/// The tokens that the grammar allows at some place: in words, and their possible first bytes.
struct Expected {
    std::string_view words;
    std::string_view firstBytes;
};

inline constexpr Expected kExpectedValue{"a value", "{[\"-0123456789tfn"};
inline constexpr Expected kExpectedElement{"a value or ']'", "{[\"-0123456789tfn]"};
inline constexpr Expected kExpectedKey{"a key", "\""};
inline constexpr Expected kExpectedMember{"a key or '}'", "\"}"};
inline constexpr Expected kExpectedColon{"':'", ":"};
inline constexpr Expected kExpectedNextElement{"',' or ']'", ",]"};
inline constexpr Expected kExpectedNextMember{"',' or '}'", ",}"};
inline constexpr Expected kExpectedEnd{"the end of the text", ""};

/// Composes the fault of a token that begins at `start`. Either the token is not allowed there, or
/// it is malformed at the byte `broken` (the text's size if the text ends within the token).
/// `reason` is the lexer's message for the latter; it distinguishes the faults of strings.
Fault syntaxFault(std::string_view text, const Expected& expected, std::size_t start,
                  std::size_t broken, std::string_view reason);

}  // namespace QosAgent
