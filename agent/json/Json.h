#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "agent/json/JsonNode.h"

namespace QosAgent {

struct JsonMember;

/// A value in a `Json` tree: two pointers, passed by value. Lives as long as the tree, which may be
/// moved meanwhile.
class JsonValue {
public:
    static constexpr int kKeyNodes = 0;
    JsonValue(const JsonNode* node, const char* texts) : node_(node), texts_(texts) {}

    JsonKind kind() const { return node_->kind; }
    bool is(JsonKind kind) const { return node_->kind == kind; }
    /// Where the value begins in the source text, in bytes from 0.
    std::size_t offset() const { return node_->offset; }

    /// Precondition: a boolean.
    bool boolean() const;
    /// A string, decoded to UTF-8 and possibly holding NUL, or a number as it stands in the source.
    /// Empty for every other kind.
    std::string_view text() const;
    /// A number in plain decimal digits. Nothing for a sign, a fraction, an exponent, more than 64
    /// bits, and for every other kind.
    std::optional<std::uint64_t> plainNumber() const;

    /// How many elements an array or members an object has; 0 for every other kind.
    std::size_t size() const { return node_->isContainer() ? node_->size : 0; }
    /// The elements in source order; none if this is no array.
    JsonRange<JsonValue> elements() const;
    /// The members in source order, no two of one name; none if this is no object.
    JsonRange<JsonMember> members() const;
    /// The member of that name; nothing if there is none or this is no object. Passes over the
    /// members one by one: to visit all of a large object, walk `members()`.
    std::optional<JsonMember> find(std::string_view name) const;

private:
    template <typename Item>
    JsonRange<Item> itemsIf(JsonKind kind) const;

    const JsonNode* node_;
    const char* texts_;
};

struct JsonMember {
    static constexpr int kKeyNodes = 1;
    JsonMember(const JsonNode* node, const char* texts)
        : key(JsonValue(node, texts).text()), keyOffset(node->offset), value(node + 1, texts) {}

    std::string_view key;   ///< decoded like a string value; lives as long as the tree
    std::size_t keyOffset;  ///< where the key's opening quote stands in the source text
    JsonValue value;
};

/// A JSON text as a tree that never changes and in which every key and value knows its place in the
/// source text. Two blocks of memory, whatever the size; independent of the source text; not copied
/// by accident. Made by `parseJson`.
class Json {
public:
    /// Takes the nodes of one whole value (at least one) and the bytes of its texts.
    Json(std::vector<JsonNode> nodes, std::vector<char> texts);
    Json(Json&&) noexcept = default;
    Json& operator=(Json&&) noexcept = default;

    /// Precondition: not moved from.
    JsonValue root() const { return {nodes_.data(), texts_.data()}; }

private:
    std::vector<JsonNode> nodes_;
    std::vector<char> texts_;
};

}  // namespace QosAgent
