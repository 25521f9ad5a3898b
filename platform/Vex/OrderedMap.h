#pragma once
// long: a collection and its iterator are one thing

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "platform/Vex/HashMap2018.h"

namespace Vex {

/// A keyed collection that is walked in ascending key order. A look-up by key uses a hash table, as
/// in `HashMap2018`.
///
/// A walk remembers the key on which it stands. After a change of the collection it continues at
/// the first greater key. So it visits no key twice and no removed key, and visits a key that is
/// inserted during the walk only if the key is greater.
template <class K, class V, std::uint32_t kSeed = 0>
class OrderedMap {
public:
    using Key = K;
    using Mapped = V;
    static constexpr bool kIsOrdered = true;
    class Iterator;
    struct End {};

    OrderedMap() noexcept = default;
    OrderedMap(const OrderedMap&) = delete;
    OrderedMap& operator=(const OrderedMap&) = delete;
    ~OrderedMap();

    std::size_t size() const noexcept { return members_.size(); }
    bool empty() const noexcept { return members_.empty(); }

    /// Returns the value under the key; null if absent.
    template <class Q>
    V* find(const Q& key) noexcept {
        return members_.find(key);
    }
    template <class Q>
    const V* find(const Q& key) const noexcept {
        return members_.find(key);
    }

    /// Calls `visit` with each value in ascending order of the keys. Faster than a walk; the
    /// collection must not change during it.
    template <class Visit>
    void eachValue(Visit visit) const {
        for (const Run& run : runs_)
            for (const Slot& slot : run)
                visit(slot.member->value);
    }

    /// Inserts a member. Precondition: the key is absent.
    void enter(const K& key, V value) {
        const Member& member = members_.enter(key, std::move(value));
        ++changes_;  // even if the insertion fails below: a run may have been split by then
        try {
            Run& run = runFor(key);
            run.insert(std::lower_bound(run.begin(), run.end(), key, slotBelow), {key, &member});
        } catch (...) {
            std::erase_if(runs_, [](const Run& run) { return run.empty(); });
            members_.remove(key);
            throw;
        }
    }
    /// Replaces the value of a member that was found before.
    void assign(const K&, V& held, V value) noexcept { held = std::move(value); }
    /// Removes the member under the key and returns its value; nothing if absent. `key` must not
    /// refer to the member's own key.
    std::optional<V> remove(const K& key) {
        std::optional<V> value = members_.remove(key);
        if (!value) return value;
        const auto run = runs_.begin() + static_cast<std::ptrdiff_t>(runIndexFor(key));
        run->erase(std::lower_bound(run->begin(), run->end(), key, slotBelow));
        if (run->empty()) runs_.erase(run);
        ++changes_;
        return value;
    }
    /// Removes all members, the greatest first. The collection must not be destroyed during this.
    void clear() noexcept {
        while (!empty())
            remove(K(runs_.back().back().key));
    }

    Iterator begin() const noexcept { return Iterator(*this); }
    End end() const noexcept { return {}; }

private:
    using Member = typename HashMap2018<K, V, kSeed>::Member;
    struct Slot {
        K key;
        const Member* member;
    };
    /// A run of neighbouring members. An insertion moves at most the members of one run.
    using Run = std::vector<Slot>;
    static constexpr std::size_t kLongestRun = 128;

    static bool slotBelow(const Slot& slot, const K& key) { return slot.key < key; }
    static bool runBelow(const K& key, const Run& run) { return key < run.front().key; }

    /// Returns the run in which the key is or belongs. Precondition: there is a run.
    std::size_t runIndexFor(const K& key) const {
        const auto above = std::upper_bound(runs_.begin(), runs_.end(), key, runBelow);
        return above == runs_.begin() ? 0 : static_cast<std::size_t>(above - runs_.begin() - 1);
    }
    /// Returns the run into which the key is to be inserted; splits it first if it is full.
    Run& runFor(const K& key) {
        if (runs_.empty()) return runs_.emplace_back();
        const std::size_t index = runIndexFor(key);
        if (runs_[index].size() < kLongestRun) return runs_[index];
        const bool atEnd = index + 1 == runs_.size() && runs_[index].back().key < key;
        split(index, atEnd ? kLongestRun : kLongestRun / 2);
        return atEnd ? runs_[index + 1] : runs_[runIndexFor(key)];
    }
    void split(std::size_t index, std::size_t kept) {
        Run upper(runs_[index].begin() + static_cast<std::ptrdiff_t>(kept), runs_[index].end());
        runs_.insert(runs_.begin() + static_cast<std::ptrdiff_t>(index) + 1, std::move(upper));
        runs_[index].erase(runs_[index].begin() + static_cast<std::ptrdiff_t>(kept),
                           runs_[index].end());
    }

    HashMap2018<K, V, kSeed> members_;
    std::vector<Run> runs_;
    std::uint32_t changes_ = 0;
    /// The running walks, innermost first.
    mutable Iterator* walks_ = nullptr;
};

/// Stands on a member. Its key is a copy and stays valid when the member is removed.
template <class K, class V, std::uint32_t kSeed>
class OrderedMap<K, V, kSeed>::Iterator {
public:
    explicit Iterator(const OrderedMap& map) noexcept
        : map_(&map), outer_(map.walks_), changes_(map.changes_) {
        enter();
        stand();
    }
    Iterator(const Iterator&) = delete;
    Iterator& operator=(const Iterator&) = delete;
    ~Iterator() {
        if (map_ != nullptr) map_->walks_ = outer_;
    }

    struct Visit {
        const K& key;
        const V& value;
    };
    /// The member's value when the walk reached it. Read it before you change the collection.
    Visit operator*() const noexcept {
        assertThat(value_ != nullptr, "iter_", "platform/Vex/OrderedMap", __LINE__,
                   __PRETTY_FUNCTION__);
        return {key_, *value_};
    }
    Iterator& operator++() noexcept {
        if (map_ == nullptr) {
            value_ = nullptr;
        } else {
            advance();
            stand();
        }
        return *this;
    }
    friend bool operator==(const Iterator& at, End) noexcept { return at.value_ == nullptr; }

private:
    friend class OrderedMap;

// The destructor unregisters the walk, which GCC does not see.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdangling-pointer"
#endif
    void enter() noexcept {
        map_->walks_ = this;
    }
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif
    void advance() noexcept {
        if (changes_ == map_->changes_) [[likely]]
            ++slot_;
        else
            seek();
    }
    /// Moves to the first greater key.
    void seek() noexcept {
        changes_ = map_->changes_;
        slot_ = end_ = nullptr;
        run_ = 0;
        if (map_->runs_.empty()) return;
        const std::size_t index = map_->runIndexFor(key_);
        enterRun(index);
        const auto greater = [](const K& key, const Slot& slot) { return key < slot.key; };
        slot_ = std::upper_bound(slot_, end_, key_, greater);
    }
    void enterRun(std::size_t index) noexcept {
        const Run& run = map_->runs_[index];
        slot_ = run.data();
        end_ = slot_ + run.size();
        run_ = index + 1;
    }
    /// Reads key and value of the slot; at the end of a run, of the next run's first slot.
    void stand() noexcept {
        if (slot_ == end_) {
            if (run_ == map_->runs_.size()) {
                value_ = nullptr;
                return;
            }
            enterRun(run_);
        }
        key_ = slot_->key;
        value_ = &slot_->member->value;
    }

    const OrderedMap* map_;
    Iterator* outer_;
    std::uint32_t changes_;
    /// The next run, and the remaining slots of the current one.
    std::size_t run_ = 0;
    const Slot* slot_ = nullptr;
    const Slot* end_ = nullptr;
    K key_{};
    const V* value_ = nullptr;
};

template <class K, class V, std::uint32_t kSeed>
OrderedMap<K, V, kSeed>::~OrderedMap() {
    clear();  // the destructors of values may read or change the collection
    for (Iterator* walk = walks_; walk != nullptr; walk = walk->outer_)
        walk->map_ = nullptr;
}

}  // namespace Vex
