#pragma once

#include <span>
#include <string_view>

namespace QosAgent {

/// The part of the model openconfig-qos that is needed to walk a configuration: which nodes are
/// lists, and the keys of their entries. All other nodes are containers or leaves.
struct ModelSchema {
    std::string_view name;
    std::string_view key = {};  ///< of a list: the leaf that is the key; otherwise empty
    /// The nodes below it, or below an entry, that are or contain lists.
    std::span<const ModelSchema> children = {};
    /// If true, the configuration stores each node of this kind separately, so that an edit of one
    /// copies no other.
    bool isKeptApart = false;

    bool isList() const { return !key.empty(); }
    /// Returns the child of this name, which has no prefix; null if it contains no lists.
    const ModelSchema* child(std::string_view name) const;
    /// Returns the schema of the root.
    static const ModelSchema& root();
};

/// Returns the child of a schema, which may be null.
inline const ModelSchema* childOf(const ModelSchema* schema, std::string_view name) {
    return schema == nullptr ? nullptr : schema->child(name);
}

}  // namespace QosAgent
