#pragma once

#include <cstdint>
#include <string_view>
#include <utility>

#include "platform/Orin/Ptr.h"
#include "platform/Vex/Errors.h"
#include "platform/Vex/HashMap2018.h"

namespace Vex {

/// Child machines by key.
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

    /// The child under the key of its first input, which is what its member function `keyOf` gives:
    /// the one that is there, or a new one. The reference is good while the child is there. Throws
    /// the null-argument error, naming `attribute`, when the first input is null; the
    /// re-instantiation error when the one that is there was made from other inputs.
    template <class KeyOf, class First, class... A>
    const Orin::Ptr<Sm>& createOrKeep(std::string_view attribute, KeyOf keyOf,
                                      const Orin::Ptr<First>& first, const A&... rest) {
        if (!first) throwMutatorArgNullPointerException(attribute);
        const K& key = (*first.*keyOf)();  // stays: the child holds its inputs
        if (const Orin::Ptr<Sm>* held = byKey_.find(key)) {
            if (!(*held)->isMadeFrom(first, rest...)) Impl::throwMutatorReinstantiating(attribute);
            return *held;
        }
        return created(key, first, rest...);
    }
    /// Removes the child under the key and returns it; null if there was none.
    Orin::Ptr<Sm> remove(const K& key) {
        ++changes_;
        return byKey_.remove(key).value_or(nullptr);
    }
    /// The pattern of every member handler: a member that the input holds gets its child through
    /// `create`; the child of one that is gone (or null) takes its state back and is removed.
    template <class Input, class Create>
    void reconcile(const K& key, const Input& input, Create create) {
        const auto* member = input.find(key);
        if (member != nullptr && *member)
            create(member->asConst());
        else
            prepareAndRemove(key);
    }
    /// Lets the child take its state back, then removes it. Nothing happens when there is none.
    void prepareAndRemove(const K& key) {
        auto* member = byKey_.member(key);
        if (member == nullptr) return;
        const Orin::Ptr<Sm> gone = member->value;
        const std::uint32_t changes = changes_;
        gone->doPrepareToDie();
        // Who was told of what it took back may have removed it, too, or made another.
        if (changes_ != changes) [[unlikely]] {
            member = byKey_.member(key);
            if (member == nullptr || !(member->value == gone)) return;
        }
        ++changes_;
        byKey_.erase(*member);
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
    template <class... A>
    const Orin::Ptr<Sm>& created(const K& key, const A&... given) {
        const std::uint32_t changes = changes_;
        Orin::Ptr<Sm> child = Sm::create(given...);
        // Who was told of what the new one wrote may have asked for it, too.
        if (changes_ != changes) [[unlikely]]
            if (const Orin::Ptr<Sm>* held = byKey_.find(key)) return *held;
        ++changes_;
        return byKey_.enter(key, std::move(child)).value;
    }

    Members byKey_;
    /// Counts what was entered or removed, to see whether more was meanwhile.
    std::uint32_t changes_ = 0;
};

}  // namespace Vex
