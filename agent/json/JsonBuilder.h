#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <vector>

#include "agent/json/Json.h"
#include "agent/json/JsonWriter.h"

namespace QosAgent {

/// Builds a tree piece by piece, from parts of others. Calls must nest as JSON does, with a key
/// before each member's value; the names of an object must differ.
class JsonBuilder {
public:
    /// The offset of a value that is in no source text.
    static constexpr std::size_t kNoOffset = std::numeric_limits<std::uint32_t>::max();

    JsonBuilder& beginObject(std::size_t offset) { return begin(JsonKind::object, offset); }
    JsonBuilder& beginArray(std::size_t offset) { return begin(JsonKind::array, offset); }
    JsonBuilder& end();
    JsonBuilder& key(std::string_view name, std::size_t offset);
    JsonBuilder& text(std::string_view text, std::size_t offset);
    /// Adds a value of another tree with its contents, all at `offset` if that is given.
    JsonBuilder& copy(const JsonValue& value, std::optional<std::size_t> offset = {});

    /// Returns the tree and empties the builder. Precondition: one whole value was built.
    Json take();

private:
    JsonBuilder& begin(JsonKind kind, std::size_t offset);
    void add(JsonKind kind, std::string_view text, std::size_t offset);
    void countItem();

    std::vector<JsonNode> nodes_;
    std::vector<char> texts_;
    std::vector<std::size_t> open_;
};

/// Returns a copy of a value, independent of its tree.
Json copyOf(const JsonValue& value);
/// Writes a value with its contents; numbers as they are spelled.
void writeJson(JsonWriter& writer, const JsonValue& value);

}  // namespace QosAgent
