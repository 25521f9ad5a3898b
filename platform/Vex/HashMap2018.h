#pragma once
// long: a collection and its iterator are one thing

#include <algorithm>
#include <cstdint>
#include <new>
#include <optional>
#include <utility>

#include "platform/Orin/WalkList.h"
#include "platform/OvSlab/Slab.h"
#include "platform/Vex/Assert.h"
#include "platform/Vex/KeyTraits.h"

namespace Vex {

/// Counts the members, and the bucket arrays, of all keyed collections.
PLATFORM_API extern OvSlab::Tracker memberTracker;

/// A keyed collection: a hash table with its own seed.
///
/// A member keeps its address until it is removed. Walks follow the insertion order and tolerate
/// every change. A walk visits each member that was present at its beginning at most once, and none
/// that is removed or inserted during it. The member on which a walk stands stays readable until
/// the walk moves on; if it was removed, its value is empty.
template <class K, class V, std::uint32_t kSeed = 0>
class HashMap2018 {
public:
    using Key = K;
    using Mapped = V;
    static constexpr bool kIsOrdered = false;
    struct Member : Orin::Link {
        template <class... A>
        Member(std::uint32_t h, std::uint32_t n, const K& k, A&&... v)
            : hash(h), number(n), key(k), value(std::forward<A>(v)...) {}
        std::uint32_t hash;
        /// Numbers the insertions, to tell which member is older.
        std::uint32_t number;
        const K key;
        V value;
        Member* chain = nullptr;
    };
    class Iterator;
    struct End {};

    HashMap2018() noexcept = default;
    HashMap2018(const HashMap2018&) = delete;
    HashMap2018& operator=(const HashMap2018&) = delete;
    ~HashMap2018() {
        clear();
        freeBuckets();
    }

    std::size_t size() const noexcept { return size_; }
    bool empty() const noexcept { return size_ == 0; }

    /// Returns the value under the key; null if absent. Accepts types comparable with the key.
    template <class Q>
    V* find(const Q& key) noexcept {
        Member* member = memberAt(key, KeyTraits<K>::hash(key, kSeed));
        return member == nullptr ? nullptr : &member->value;
    }
    template <class Q>
    const V* find(const Q& key) const noexcept {
        return const_cast<HashMap2018*>(this)->find(key);
    }

    /// Returns the member under the key; null if absent.
    Member* member(const K& key) noexcept { return memberAt(key, KeyTraits<K>::hash(key, kSeed)); }

    /// Returns true if both keys are present and a walk visits `a` first.
    template <class Q>
    bool isBefore(const Q& a, const Q& b) const noexcept {
        const Member* first = memberAt(a, KeyTraits<K>::hash(a, kSeed));
        const Member* second = memberAt(b, KeyTraits<K>::hash(b, kSeed));
        // Compares the difference, because the numbers may wrap.
        return first != nullptr && second != nullptr &&
               static_cast<std::int32_t>(first->number - second->number) < 0;
    }

    /// Finds values under one key after another. Keys in insertion order cost least, because the
    /// search begins with the member after the last one found. The collection must not change while
    /// this object is used.
    class Finder {
    public:
        explicit Finder(const HashMap2018& map) noexcept
            : map_(map),
              next_(map.empty() ? nullptr : static_cast<const Member*>(&map.order_.front())) {}
        const V* find(const K& key) noexcept {
            const Member* found = next_;
            if (found == nullptr || !(found->key == key)) [[unlikely]]
                found = map_.memberAt(key, KeyTraits<K>::hash(key, kSeed));
            if (found == nullptr) return nullptr;
            next_ = static_cast<const Member*>(map_.order_.after(*found));
            return &found->value;
        }

    private:
        const HashMap2018& map_;
        const Member* next_;
    };

    /// Inserts a member with a value made from the arguments. Precondition: the key is absent.
    template <class... A>
    Member& enter(const K& key, A&&... value) {
        if (size_ == bucketCount_) [[unlikely]]
            grow();
        static_assert(std::is_nothrow_constructible_v<V, A...>, "the memory would be lost");
        const std::uint32_t hash = KeyTraits<K>::hash(key, kSeed);
        void* memory = OvSlab::slabAlloc(sizeof(Member), memberTracker);
        auto* member = new (memory) Member(hash, entries_++, key, std::forward<A>(value)...);
        Member*& bucket = buckets_[hash & (bucketCount_ - 1)];
        member->chain = bucket;
        bucket = member;
        order_.append(*member);
        ++size_;
        return *member;
    }
    /// Replaces the value of a member that was found before.
    void assign(const K&, V& held, V value) noexcept { held = std::move(value); }
    /// Removes the member under the key and returns its value; nothing if absent.
    template <class Q>
    std::optional<V> remove(const Q& key) {
        Member* member = memberAt(key, KeyTraits<K>::hash(key, kSeed));
        if (member == nullptr) return std::nullopt;
        std::optional<V> value(std::move(member->value));
        unlink(*member);
        return value;
    }
    /// Removes the member under the key; returns false if absent.
    template <class Q>
    bool erase(const Q& key) {
        Member* member = memberAt(key, KeyTraits<K>::hash(key, kSeed));
        if (member != nullptr) unlink(*member);
        return member != nullptr;
    }
    /// Removes a member of this collection.
    void erase(Member& member) noexcept { unlink(member); }
    /// Removes all members in insertion order. The collection must not be destroyed during this.
    void clear() noexcept {
        while (!order_.empty())
            unlink(static_cast<Member&>(order_.front()));
    }

    Iterator begin() const noexcept { return Iterator(*this); }
    End end() const noexcept { return {}; }

private:
    template <class Q>
    Member* memberAt(const Q& key, std::uint32_t hash) const noexcept {
        if (bucketCount_ == 0) return nullptr;
        Member* member = buckets_[hash & (bucketCount_ - 1)];
        while (member != nullptr && !(member->hash == hash && member->key == key))
            member = member->chain;
        return member;
    }
    void unlink(Member& member) noexcept {
        Member** at = &buckets_[member.hash & (bucketCount_ - 1)];
        while (*at != &member)
            at = &(*at)->chain;
        *at = member.chain;
        order_.remove(member);
        --size_;
        if (auto* walk = order_.outermostWalkAt(member)) [[unlikely]] {
            member.value = V();
            static_cast<Iterator*>(walk)->stale_ = &member;
        } else {
            destroy(&member);
        }
    }
    static void destroy(Member* member) noexcept {
        member->~Member();
        OvSlab::slabFree(member, sizeof(Member), memberTracker);
    }
    void grow() {
        const std::uint32_t count = bucketCount_ == 0 ? 4 : 2 * bucketCount_;
        auto** buckets =
            static_cast<Member**>(OvSlab::slabAlloc(count * sizeof(Member*), memberTracker));
        std::fill_n(buckets, count, nullptr);
        Orin::WalkList::Walk walk(order_);
        while (Orin::Link* link = walk.step()) {
            auto& member = static_cast<Member&>(*link);
            member.chain = std::exchange(buckets[member.hash & (count - 1)], &member);
        }
        freeBuckets();
        buckets_ = buckets;
        bucketCount_ = count;
    }
    void freeBuckets() noexcept {
        if (buckets_ != nullptr)
            OvSlab::slabFree(buckets_, bucketCount_ * sizeof(Member*), memberTracker);
    }

    Member** buckets_ = nullptr;
    std::uint32_t bucketCount_ = 0;
    std::uint32_t size_ = 0;
    std::uint32_t entries_ = 0;
    Orin::WalkList order_;
};

/// Stands on a member. Not copyable, because the collection keeps track of it.
template <class K, class V, std::uint32_t kSeed>
class HashMap2018<K, V, kSeed>::Iterator : private Orin::WalkList::Walk {
public:
    explicit Iterator(const HashMap2018& map) noexcept : Walk(map.order_) { step(); }
    ~Iterator() { dropStale(); }

    const Member& operator*() const noexcept {
        assertThat(current() != nullptr, "iter_", "platform/Vex/HashMap2018", __LINE__,
                   __PRETTY_FUNCTION__);
        return static_cast<const Member&>(*current());
    }
    const Member* operator->() const noexcept { return &**this; }
    Iterator& operator++() noexcept {
        step();
        dropStale();
        return *this;
    }
    friend bool operator==(const Iterator& at, End) noexcept { return at.current() == nullptr; }

private:
    friend class HashMap2018;
    void dropStale() noexcept {
        if (stale_ != nullptr) destroy(std::exchange(stale_, nullptr));
    }

    /// The member on which it stands, if that was removed; destroyed when the iterator moves on.
    Member* stale_ = nullptr;
};

}  // namespace Vex
