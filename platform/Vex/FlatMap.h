#pragma once

#include <algorithm>
#include <cstdint>

#include "platform/Orin/Vector.h"

namespace Vex {

/// A small keyed collection inside a value: plain keys and plain values, in ascending key order.
template <class K, class V>
class FlatMap {
public:
    using Key = K;
    using Mapped = V;
    struct Member {
        K key;
        V value;
        friend bool operator==(const Member&, const Member&) = default;
    };

    std::size_t size() const noexcept { return members_.size(); }
    bool empty() const noexcept { return members_.empty(); }
    const Member* begin() const noexcept { return members_.begin(); }
    const Member* end() const noexcept { return members_.end(); }

    /// Returns the value under the key; null if absent. Linear search: such maps have one member,
    /// or a few.
    const V* find(K key) const noexcept {
        for (const Member& member : *this)
            if (!(member.key < key)) return member.key == key ? &member.value : nullptr;
        return nullptr;
    }
    /// Inserts the member or replaces its value.
    void is(K key, V value) {
        if (const V* held = find(key)) {
            *const_cast<V*>(held) = value;
            return;
        }
        const auto at = std::lower_bound(begin(), end(), key, below) - begin();
        members_.push({key, value});
        std::rotate(members_.begin() + at, members_.end() - 1, members_.end());
    }

    friend bool operator==(const FlatMap&, const FlatMap&) = default;

private:
    static bool below(const Member& member, K key) noexcept { return member.key < key; }

    Orin::Vector<Member> members_;
};

}  // namespace Vex
