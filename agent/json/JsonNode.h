#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace QosAgent {

enum class JsonKind : std::uint8_t { null, boolean, number, string, array, object };

/// One entry of a tree, in the order of the text: a container comes before its contents, and the
/// key of a member, as a string, right before the member's value.
struct JsonNode {
    std::uint32_t offset;  ///< in the source text, in bytes
    std::uint32_t size;    ///< bytes of a string or number, items of a container, 1 for true
    std::uint32_t place;   ///< first byte of a string or number; nodes of a whole container
    JsonKind kind;

    bool isContainer() const { return kind == JsonKind::array || kind == JsonKind::object; }
    /// Returns the distance to the value's next sibling, in nodes.
    std::uint32_t nodes() const { return isContainer() ? place : 1; }
};

/// Walks the items of one container. `Item::kKeyNodes` is the number of key nodes before each
/// value. An `Item` is constructed from its first node and the texts of the tree.
template <typename Item>
class JsonIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = Item;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = Item;

    JsonIterator(const JsonNode* node, const char* texts) : node_(node), texts_(texts) {}

    Item operator*() const { return Item(node_, texts_); }
    JsonIterator& operator++() {
        node_ += Item::kKeyNodes;
        node_ += node_->nodes();
        return *this;
    }
    JsonIterator operator++(int) {
        JsonIterator before = *this;
        ++*this;
        return before;
    }
    bool operator==(const JsonIterator& other) const { return node_ == other.node_; }

private:
    const JsonNode* node_;
    const char* texts_;
};

/// The items of one container, for range-based `for`. Valid as long as the tree.
template <typename Item>
class JsonRange {
public:
    JsonRange(const JsonNode* first, const JsonNode* last, const char* texts)
        : begin_(first, texts), end_(last, texts) {}

    JsonIterator<Item> begin() const { return begin_; }
    JsonIterator<Item> end() const { return end_; }

private:
    JsonIterator<Item> begin_;
    JsonIterator<Item> end_;
};

}  // namespace QosAgent
