#pragma once

#include <cstdint>
#include <string_view>
#include <utility>

#include "platform/Orin/Ptr.h"
#include "platform/Vex/Errors.h"
#include "platform/Vex/HashMap2018.h"
#include "platform/Vex/Turn.h"

namespace Vex {

/// A field with child machines by key.
template <class K, class Sm, std::uint32_t kSeed>
class Children {
public:
    using Machine = Sm;
    using Members = HashMap2018<K, Orin::Ptr<Sm>, kSeed>;

    Sm* get(const K& key) const noexcept {
        const Orin::Ptr<Sm>* held = byKey_.find(key);
        return held == nullptr ? nullptr : held->get();
    }
    const Members& members() const noexcept { return byKey_; }

    /// Returns the child under the key of the first input, which its member function `keyOf`
    /// returns. Creates the child if absent. The reference is valid until the child is removed.
    /// Throws `MutatorArgNullPointerException`, which names `attribute`, if the first input is
    /// null; `MutatorReinstantiatingException` if the present child was created from other inputs.
    template <class KeyOf, class First, class... A>
    const Orin::Ptr<Sm>& createOrKeep(std::string_view attribute, KeyOf keyOf,
                                      const Orin::Ptr<First>& first, const A&... rest) {
        if (!first) throwMutatorArgNullPointerException(attribute);
        const K& key = (*first.*keyOf)();  // stays valid: the child owns its inputs
        if (const Orin::Ptr<Sm>* held = byKey_.find(key)) {
            if (!(*held)->isMadeFrom(first, rest...)) Impl::throwMutatorReinstantiating(attribute);
            return *held;
        }
        return created(key, first, rest...);
    }
    /// Removes the child under the key and returns it; null if absent.
    Orin::Ptr<Sm> remove(const K& key) {
        ++changes_;
        return byKey_.remove(key).value_or(nullptr);
    }
    /// The pattern of every handler of a collection. If the input has a member under the key,
    /// `create` creates or keeps its child. If the member is absent or null, the child takes back
    /// its state and is removed. If a subscriber changes the member during this, the child is
    /// removed and the member is read again.
    template <class Input, class Create>
    void reconcile(const K& key, const Input& input, Create create) {
        const auto find = [&] {
            const auto* member = input.find(key);
            return member == nullptr ? nullptr : &member->asConst();
        };
        if (Turn* turn = turnOn(key)) [[unlikely]] {
            const auto* member = find();
            turn->memberIs(member == nullptr ? nullptr : member->get());
            return;
        }
        inTurn(key, [&](Turn& turn) { turn.settle(find, create, [&] { takeDown(key); }); });
    }
    /// Lets the child take back its state, then removes it. No-op if absent. Precondition: the
    /// parent is ending; no child is created under the key again.
    void prepareAndRemove(const K& key) {
        if (Turn* turn = turnOn(key)) [[unlikely]] {
            turn->parentEnds();
            return;
        }
        inTurn(key, [&](Turn& turn) {
            turn.parentEnds();
            takeDown(key);
        });
    }

    void activeIs(bool active) {
        for (const auto& member : byKey_)
            member.value->hasNotificationActiveIs(active);
    }
    void clear() noexcept {
        ++changes_;
        byKey_.clear();
    }

private:
    struct KeyTurn : Turn {
        KeyTurn(const K& k, KeyTurn* o) noexcept : key(k), outer(o) {}
        const K& key;
        KeyTurn* outer;
    };

    /// Returns the running turn on the key; null if there is none.
    Turn* turnOn(const K& key) const noexcept {
        KeyTurn* turn = turn_;
        while (turn != nullptr && !(turn->key == key))
            turn = turn->outer;
        return turn;
    }
    template <class Work>
    void inTurn(const K& key, Work work) {
        KeyTurn turn(key, turn_);
        const ScopedPointer<KeyTurn> current(turn_, &turn);
        work(turn);
    }
    void takeDown(const K& key) {
        auto* member = byKey_.member(key);
        if (member == nullptr) return;
        const Orin::Ptr<Sm> gone = member->value;
        const std::uint32_t changes = changes_;
        gone->doPrepareToDie();
        // A subscriber of the state may have removed the child through `remove`.
        if (changes_ != changes) [[unlikely]] {
            member = byKey_.member(key);
            if (member == nullptr || !(member->value == gone)) return;
        }
        ++changes_;
        byKey_.erase(*member);
    }
    template <class... A>
    const Orin::Ptr<Sm>& created(const K& key, const A&... given) {
        const std::uint32_t changes = changes_;
        Orin::Ptr<Sm> child = Sm::create(given...);
        // A subscriber of the state may have caused the same child to be created.
        if (changes_ != changes) [[unlikely]]
            if (const Orin::Ptr<Sm>* held = byKey_.find(key)) return *held;
        ++changes_;
        return byKey_.enter(key, std::move(child)).value;
    }

    Members byKey_;
    /// The innermost running turn; null if there is none.
    KeyTurn* turn_ = nullptr;
    /// Counts insertions and removals, to detect those that happen during a call.
    std::uint32_t changes_ = 0;
};

}  // namespace Vex
