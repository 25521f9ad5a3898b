#pragma once

#include <span>
#include <string_view>

namespace QosAgent {

/// What the configuration must know of the module openconfig-qos to walk it: which nodes are lists,
/// and what their entries are called by. Everything else is a container or a leaf.
struct ModelSchema {
    std::string_view name;
    std::string_view key = {};  ///< of a list: the leaf that tells its entries apart; else empty
    /// Nodes below it, or below an entry, that are lists or have lists below them.
    std::span<const ModelSchema> children = {};
    /// The configuration keeps each node of this kind apart, so that an edit of one copies no
    /// other.
    bool isKeptApart = false;

    bool isList() const { return !key.empty(); }
    /// Null if nothing of that name is known to have lists. `name` has no prefix.
    const ModelSchema* child(std::string_view name) const;
    /// The root of a configuration.
    static const ModelSchema& root();
};

/// The child of a schema that may be null.
inline const ModelSchema* childOf(const ModelSchema* schema, std::string_view name) {
    return schema == nullptr ? nullptr : schema->child(name);
}

}  // namespace QosAgent
