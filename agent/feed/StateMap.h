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
    /// Returns the value at exactly this path; null if absent.
    StateValuePtr find(std::string_view path) const;
    /// Returns the first entry whose path is not less than `path` in byte order; null if there is
    /// none. So a walk can be continued later. An entry is valid as long as the map.
    const Entry* firstFrom(std::string_view path) const;
    /// Returns the first entry whose path is greater than `path`; null if there is none.
    const Entry* firstAfter(std::string_view path) const;
    /// Returns true if there is an entry at the path or below it.
    bool holds(std::string_view path) const;

    /// Returns a map with this entry, which replaces one with the same path.
    StateMap with(std::string path, StateValuePtr value) const;
    /// Returns a map without the entry at the path and all entries below it.
    StateMap without(std::string_view path) const;

    /// Returns true if both are copies of one map. Equal maps need not be.
    bool isSame(const StateMap& other) const { return root_ == other.root_; }

private:
    friend struct StateMapNodes;
    struct Node;
    using Link = std::shared_ptr<const Node>;
    explicit StateMap(Link root) : root_(std::move(root)) {}

    Link root_;
};

/// Returns true if `path` is `ancestor` or below it.
bool isAtOrBelow(std::string_view path, std::string_view ancestor);

}  // namespace QosAgent
