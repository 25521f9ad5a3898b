#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "agent/gnmi/Pattern.h"

namespace QosAgent::Gnmi {

/// Which leaves a request means: those below any of its paths, of the sides it names, and not
/// deeper than it says.
struct Query {
    std::vector<Pattern> patterns;
    bool wantsKeys = false;
    bool wantsConfig = true;
    bool wantsState = true;
    std::size_t depth = 0;  ///< levels below the matched node; 0 for all

    bool wants(Side side) const;
};

/// How a walk from the root stands to a query at some node.
class Match {
public:
    static Match start(const Query& query);

    /// The same at a child; `key` is that of a list entry, null for every other node.
    Match step(const SchemaNode& child, const std::string* key) const;
    /// Whether the node is below a requested path, or is named by one.
    bool isInside() const { return matchedDepth_.has_value(); }
    /// Whether a leaf at or below the node can be meant.
    bool isPossible() const;
    /// Whether the leaf, at whose parent the walk is, is meant.
    bool isLeafMeant(const SchemaNode& leaf) const;
    /// Whether the query means leaves of this side at all.
    bool wants(Side side) const { return query_->wants(side); }
    /// The keys that the requested paths name for entries of a list below the node; nothing where
    /// every entry can be meant.
    std::optional<std::vector<std::string_view>> exactKeys(const SchemaNode& list) const;

private:
    explicit Match(const Query& query) : query_(&query) {}

    void update(std::size_t depth);

    const Query* query_;
    std::size_t depth_ = 0;
    std::optional<std::size_t> matchedDepth_;  ///< of the deepest node that a path names
    std::vector<Pattern::State> states_;       ///< empty when they cannot matter any more
};

/// Whether the query means this leaf, wherever the tree has it.
bool isMeant(const Query& query, const DataPath& leaf);

}  // namespace QosAgent::Gnmi
