#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "agent/feed/PolicyMapNames.h"
#include "agent/gnmi/ConfigView.h"
#include "agent/gnmi/Query.h"
#include "agent/gnmi/StateSource.h"

namespace QosAgent::Gnmi {

/// What is served at one moment: configuration and state as one tree of the model.
struct Tree {
    std::int64_t timestamp = 0;  ///< of the last change, in nanoseconds since 1970
    ConfigView config;           ///< its root
    StateSource state;
    PolicyMapNames policyMaps = {};

    ConfigView configOf(const DataPath& node) const;
    /// The leaves of a list entry's state, without those of the lists within it.
    std::vector<LeafValue> stateLeaves(const DataPath& entry) const;
    /// Whether anything is left at or below the node.
    bool holds(const DataPath& node) const;
    /// The leaves of a list entry on both sides, in the order of `DataPathOrder`, without its key
    /// leaf and without those of the lists within it.
    std::vector<LeafValue> leaves(const DataPath& entry) const;
};

/// Walks the leaves that a query means, in the order of the model; entries of lists as they were
/// configured, then those of the state alone. Borrows both, and holds a few hundred bytes for each
/// level of the tree, whatever its size, so that a walk can be left and continued.
class TreeCursor {
public:
    enum class Event {
        enter,  ///< into a container or list entry, which may turn out to hold nothing
        leaf,
        leave,  ///< the one that was entered last
        end,
    };

    TreeCursor(const Tree& tree, const Query& query);
    /// Walks only what is at and below `start`, which must not be a leaf.
    TreeCursor(const Tree& tree, const Query& query, const DataPath& start);

    /// Goes on to the next event.
    Event next();
    /// The node of the last event.
    const SchemaNode& node() const { return *node_; }
    /// The keys of the lists on the way to it.
    const std::vector<std::string>& keys() const { return keys_; }
    DataPath path() const { return {node_, keys_}; }
    /// The value of the leaf as RFC 7951 JSON.
    const std::string& json() const { return json_; }
    /// Whether the node is inside a requested path.
    bool isInside() const { return isInside_; }

private:
    /// A container, a list entry, or a list on the way from the root.
    struct Frame {
        const SchemaNode* node;
        bool isEntries;  ///< of a list, not of one entry
        ConfigView config;
        Match match;
        std::size_t next = 0;  ///< child, or exact key
        std::optional<ConfigView::Entries> entries;
        std::optional<std::vector<std::string_view>> exact;
        std::optional<std::string> lastOfState;
        bool isAtState = false;
    };

    bool visitChild(const SchemaNode& child);
    bool visitLeaf(const SchemaNode& leaf);
    void visitEntries();
    bool visitEntry(const std::string& key, ConfigView config);
    bool nextEntry();
    Event leave();
    bool stateHoldsBelow(const SchemaNode& node) const;

    const Tree& tree_;
    std::vector<Frame> frames_;
    std::vector<std::string> keys_;
    /// The state of the list entries on the way, innermost last.
    std::vector<std::vector<LeafValue>> stateLeaves_;
    const SchemaNode* node_;
    std::string json_;
    bool isInside_ = false;
    bool isStarted_ = false;
};

}  // namespace QosAgent::Gnmi
