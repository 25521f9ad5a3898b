#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "agent/json/JsonNode.h"

namespace QosAgent {

struct JsonMember;

/// A view of a value in a `Json` tree: two pointers, passed by value. Valid as long as the tree,
/// which may be moved.
class JsonValue {
public:
    static constexpr int kKeyNodes = 0;
    JsonValue(const JsonNode* node, const char* texts) : node_(node), texts_(texts) {}

    JsonKind kind() const { return node_->kind; }
    bool is(JsonKind kind) const { return node_->kind == kind; }
    /// Returns where the value begins in the source text, in bytes from 0.
    std::size_t offset() const { return node_->offset; }

    /// Precondition: a boolean.
    bool boolean() const;
    /// Returns a string decoded to UTF-8, which may contain NUL, or a number as it is written in
    /// the source. Empty for every other kind.
    std::string_view text() const;
    /// Returns a number that is written in plain decimal digits. Nothing for a sign, a fraction, an
    /// exponent, more than 64 bits, and every other kind.
    std::optional<std::uint64_t> plainNumber() const;

    /// Returns the number of elements of an array or members of an object; 0 for every other kind.
    std::size_t size() const { return node_->isContainer() ? node_->size : 0; }
    /// Returns the elements in source order; none if this is not an array.
    JsonRange<JsonValue> elements() const;
    /// Returns the members in source order; none if this is not an object. Their names differ.
    JsonRange<JsonMember> members() const;
    /// Returns the member of this name; nothing if absent or if this is not an object. Linear
    /// search: to visit all members of a large object, walk `members()`.
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

    std::string_view key;   ///< decoded like a string value; valid as long as the tree
    std::size_t keyOffset;  ///< offset of the key's opening quote in the source text
    JsonValue value;
};

/// An immutable JSON tree in which every key and value has its offset in the source text. Uses two
/// blocks of memory, whatever its size. Independent of the source text. Movable, not copyable.
/// Created by `parseJson`.
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
