#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "agent/json/JsonNode.h"
#include "agent/json/JsonReader.h"

namespace QosAgent {

/// Finds duplicate keys in a tree that is being built. Keeps its memory from one object to the
/// next.
class DuplicateKeys {
public:
    /// Returns a fault at the first key of the container that repeats an earlier one; nothing if
    /// all keys differ or the container is an array. `place` of the container's node must say where
    /// the container ends; the last key may lack its value. `texts` has the bytes of all keys.
    std::optional<Fault> firstIn(const std::vector<JsonNode>& nodes, const std::vector<char>& texts,
                                 std::uint32_t container);

private:
    void listKeys(const std::vector<JsonNode>& nodes, std::uint32_t object);

    std::vector<std::uint32_t> keys_;  ///< nodes of the object's keys
};

}  // namespace QosAgent
