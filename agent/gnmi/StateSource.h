#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "agent/feed/StateMap.h"
#include "agent/gnmi/ConfigView.h"
#include "agent/gnmi/Path.h"

namespace QosAgent::Gnmi {

/// A leaf with its value as RFC 7951 JSON.
struct LeafValue {
    const SchemaNode* leaf;
    std::string json;

    friend bool operator==(const LeafValue&, const LeafValue&) = default;
};

/// The published state as leaves of the served model.
class StateSource {
public:
    explicit StateSource(StateMap map) : map_(std::move(map)) {}

    /// Whether entries of lists at or below this node can be in the state.
    static bool canHoldEntries(const SchemaNode& node);
    /// The key of the first entry of a list, or of the one that follows the entry `last`; nothing
    /// if there is none. `keys` are those of the lists around it.
    std::optional<std::string> nextKey(const SchemaNode& list, const std::vector<std::string>& keys,
                                       const std::string* last) const;
    bool hasEntry(const DataPath& entry) const;
    /// The leaves of a list entry, without those of the lists within it.
    std::vector<LeafValue> leaves(const DataPath& entry) const;

    const StateMap& map() const { return map_; }

private:
    StateMap map_;
};

/// The path below the state tree's root for an entry of the served model: `classifier/C` or
/// `classifier/C/terms/term/T`. The caller must give a classifier or a term.
std::string statePath(const DataPath& entry);

/// The classifier or term of the served model for a path below the state tree's root, which may
/// also name a classifier's `state` or its `terms`.
DataPath entryOfStatePath(std::string_view path);

const SchemaNode& classifierList();
const SchemaNode& termList();

}  // namespace QosAgent::Gnmi
