#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <variant>

#include "platform/Orin/Ptr.h"
#include "platform/Orin/String.h"
#include "platform/Vex/TypedNode.h"

namespace QosAgent {

/// What was in the database before a document came to describe it: others made it, so it stays when
/// no document describes it any more. Usually there is nothing of the kind.
class Found {
public:
    /// A member's key, or the attribute id of what is there once or not at all.
    using Key = std::variant<std::uint32_t, Orin::String>;

    void note(const Vex::TypedNode& holder, const Key& key);
    /// Whether it was noted.
    bool contains(const Vex::TypedNode& holder, const Key& key) const;
    /// The same, and forgets it.
    bool release(const Vex::TypedNode& holder, const Key& key);

private:
    struct Things {
        Orin::Ptr<const Vex::TypedNode> holder;  ///< keeps the address its own
        std::set<Key> keys;
    };
    std::map<const Vex::TypedNode*, Things> things_;
};

}  // namespace QosAgent
