#pragma once

#include <array>
#include <string_view>

#include "tests/fuzz/Entries.h"

namespace QosAgent {

/// A path message: refused by one line, or matched by what it finds.
void fuzzGnmiPath(std::string_view bytes);
/// A SetRequest: refused by one line, or a `configure` line that is all or nothing.
void fuzzGnmiSet(std::string_view bytes);
/// A SubscribeRequest: refused by one line, or a stream whose messages read back, with one sync.
void fuzzGnmiSubscribe(std::string_view bytes);

/// The ways in through the gNMI door.
inline constexpr std::array<FuzzEntry, 3> kGnmiFuzzEntries{{
    {"gnmipath", fuzzGnmiPath},
    {"gnmiset", fuzzGnmiSet},
    {"gnmisubscribe", fuzzGnmiSubscribe},
}};

}  // namespace QosAgent
