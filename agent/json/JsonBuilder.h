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
    /// The place of what stands in no source text.
    static constexpr std::size_t kNoOffset = std::numeric_limits<std::uint32_t>::max();

    JsonBuilder& beginObject(std::size_t offset) { return begin(JsonKind::object, offset); }
    JsonBuilder& beginArray(std::size_t offset) { return begin(JsonKind::array, offset); }
    JsonBuilder& end();
    JsonBuilder& key(std::string_view name, std::size_t offset);
    JsonBuilder& text(std::string_view text, std::size_t offset);
    /// A value of another tree with all it holds; at `offset`, if given, instead of their own.
    JsonBuilder& copy(const JsonValue& value, std::optional<std::size_t> offset = {});

    /// The tree; the builder is empty again. Precondition: one whole value was built.
    Json take();

private:
    JsonBuilder& begin(JsonKind kind, std::size_t offset);
    void add(JsonKind kind, std::string_view text, std::size_t offset);
    void countItem();

    std::vector<JsonNode> nodes_;
    std::vector<char> texts_;
    std::vector<std::size_t> open_;
};

/// A copy of a value, independent of its tree.
Json copyOf(const JsonValue& value);
/// Writes a value with all it holds; numbers as they are spelled.
void writeJson(JsonWriter& writer, const JsonValue& value);

}  // namespace QosAgent
