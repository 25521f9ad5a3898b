#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "agent/feed/StateValue.h"

namespace QosAgent {

/// An immutable ordered map from a path below the state tree's root (`classifier/C/state`,
/// `classifier/C/terms/term/T`, keys escaped as in change streams) to the value there. Copies share
/// their structure: to copy costs a pointer, to change one entry costs O(log n) new nodes. Any
/// thread may read any copy.
class StateMap {
public:
    struct Entry {
        std::string path;
        StateValuePtr value;  ///< never null
    };

    StateMap() = default;

    std::size_t size() const;
    bool isEmpty() const { return root_ == nullptr; }
    /// The value at exactly this path; null if there is none.
    StateValuePtr find(std::string_view path) const;
    /// The first entry whose path is `path` or stands behind it in byte order; null if there is
    /// none. Walks with this can stop and go on later: an entry lives as long as the map.
    const Entry* firstFrom(std::string_view path) const;
    /// The first entry whose path stands behind `path` in byte order; null if there is none.
    const Entry* firstAfter(std::string_view path) const;
    /// Whether there is an entry at the path or below it.
    bool holds(std::string_view path) const;

    /// The map with this entry, in place of one with the same path.
    StateMap with(std::string path, StateValuePtr value) const;
    /// The map without the entry at the path and all below it.
    StateMap without(std::string_view path) const;

    /// Whether both are the same copy; equal maps with different histories may differ.
    bool isSame(const StateMap& other) const { return root_ == other.root_; }

private:
    friend struct StateMapNodes;
    struct Node;
    using Link = std::shared_ptr<const Node>;
    explicit StateMap(Link root) : root_(std::move(root)) {}

    Link root_;
};

/// Whether `path` is `ancestor` or lies below it.
bool isAtOrBelow(std::string_view path, std::string_view ancestor);

}  // namespace QosAgent
