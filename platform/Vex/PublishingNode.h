#pragma once

#include <optional>
#include <type_traits>
#include <utility>

#include "platform/Orin/Ptr.h"
#include "platform/Orin/Publisher.h"
#include "platform/Vex/Attribute.h"
#include "platform/Vex/TypedNode.h"

namespace Vex {

/// The base class of all nodes that publish their changes.
///
/// The node stores a change first and then publishes it. Storing an equal value publishes nothing.
/// The node stays alive at least until it has notified all subscribers.
class PLATFORM_API PublishingNode : public TypedNode {
public:
    Orin::Publisher* publisher() const override { return &publisher_; }

    /// Stores a value and publishes the change, with a pointer to the old value.
    template <class T, class V>
    void attributeIs(Orin::AttributeId id, T& stored, V&& value) {
        if (stored == value) return;
        const T old = std::exchange(stored, std::forward<V>(value));
        publishChange(id, &old);
    }
    /// Inserts a member, or replaces the one under its key.
    template <class Map>
    void memberIs(Orin::AttributeId id, Map& members, const typename Map::Key& key,
                  typename Map::Mapped value) {
        const typename Map::Key changed = key;
        if (typename Map::Mapped* held = members.find(changed)) {
            if (*held == value) return;
            members.assign(changed, *held, std::move(value));
        } else {
            members.enter(changed, std::move(value));
        }
        publishChange(id, &changed);
    }
    /// Removes the member under the key and returns its value; nothing if absent.
    template <class Map>
    std::optional<typename Map::Mapped> memberDel(Orin::AttributeId id, Map& members,
                                                  const typename Map::Key& key) {
        const typename Map::Key changed = key;
        std::optional<typename Map::Mapped> removed = members.remove(changed);
        if (removed) publishChange(id, &changed);
        return removed;
    }
    /// Removes the member under the key; returns false if absent.
    template <class Map>
    bool memberErase(Orin::AttributeId id, Map& members, const typename Map::Key& key) {
        const typename Map::Key changed = key;
        const bool erased = members.erase(changed);
        if (erased) publishChange(id, &changed);
        return erased;
    }
    /// Notifies the subscribers. `key` is that of `Orin::Dispatch`.
    void publishChange(Orin::AttributeId id, const void* key) const {
        if (publisher_.hasSubscribers()) publish(id, key);
    }

private:
    void publish(Orin::AttributeId id, const void* key) const;

    mutable Orin::Publisher publisher_;
};

}  // namespace Vex
