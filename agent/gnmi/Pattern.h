#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "agent/gnmi/Path.h"
#include "agent/gnmi/Refusal.h"

namespace QosAgent::Gnmi {

/// A requested path that the served model has, ready to be matched against nodes. A walk from the
/// root carries a `State`, the set of places of the path that it has reached: `...` can reach
/// several. A node is matched when the walk reaches the path's end; all below it is meant as well.
class Pattern {
public:
    using State = std::uint64_t;

    /// The pattern of a path, or why it is refused: malformed or outside the served model.
    static OrRefusal<Pattern> of(RequestPath path);

    State start() const { return closed(1); }
    /// The state at a child of the node whose state is given. `key` is that of a list entry, null
    /// for every other node.
    State step(State state, const SchemaNode& child, const std::string* key) const;
    /// Whether a node with this state is matched.
    bool accepts(State state) const { return (state >> path_.elements.size() & 1) != 0; }
    /// The keys of the entries of `list` that can be matched from the state of the list's parent,
    /// where the path names them; nothing where every entry can be.
    std::optional<std::vector<std::string_view>> exactKeys(State state,
                                                           const SchemaNode& list) const;

    const RequestPath& path() const { return path_; }
    bool hasWildcards() const;

private:
    explicit Pattern(RequestPath path) : path_(std::move(path)) {}

    State closed(State state) const;

    RequestPath path_;
};

inline constexpr std::string_view kAnyName = "*";
inline constexpr std::string_view kAnyDescent = "...";
inline constexpr std::string_view kAnyKey = "*";

}  // namespace QosAgent::Gnmi
