#pragma once

#include <cstddef>
#include <string_view>

#include "agent/json/JsonReader.h"

namespace QosAgent {

/// What the grammar allows at some place of a text: in words, and by the bytes it can begin with.
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

/// Words the fault of a token that begins at `start`: it does not belong there, or it belongs there
/// but breaks off at the byte `broken` (the text's size if the text ends within the token).
/// `reason` is the lexer's own account of the latter; it tells the faults of a string apart.
Fault syntaxFault(std::string_view text, const Expected& expected, std::size_t start,
                  std::size_t broken, std::string_view reason);

}  // namespace QosAgent
