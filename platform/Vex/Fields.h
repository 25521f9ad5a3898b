#pragma once

#include <string_view>
#include <utility>

#include "platform/Orin/Ptr.h"
#include "platform/Orin/Publisher.h"
#include "platform/Vex/Errors.h"
#include "platform/Vex/HashMap2018.h"

/// The kinds of field that a machine is made of. Each kind says for itself what the life cycle of
/// the machine does to it; the engine asks no more than which of these it has:
/// `subscribedIs`, `activeIs`, `zombieIs`, `clear`, and equality with what was given.
namespace Vex {

/// An input whose publisher the machine subscribes to, and the subscriber record for it.
template <class T>
class Watched {
public:
    using Given = Orin::Ptr<const T>;

    Watched(Given notifier) noexcept : notifier_(std::move(notifier)) {}

    const T* operator->() const noexcept { return notifier_.get(); }
    const T& operator*() const noexcept { return *notifier_; }
    explicit operator bool() const noexcept { return static_cast<bool>(notifier_); }
    const Given& notifier() const noexcept { return notifier_; }
    friend bool operator==(const Watched& watched, const Given& given) noexcept {
        return watched.notifier_ == given;
    }

    void bind(Orin::Dispatch dispatch, void* owner) noexcept {
        record_.dispatch = dispatch;
        record_.owner = owner;
    }
    bool isSubscribed() const noexcept { return record_.isLinked(); }
    void subscribedIs(bool subscribed) noexcept {
        if (!notifier_) return;
        if (subscribed)
            notifier_->publisher()->subscriberAdd(record_);
        else
            notifier_->publisher()->subscriberDel(record_);
    }

private:
    Given notifier_;
    Orin::Subscriber record_;
};

/// At most one child machine.
template <class Sm>
class Child {
public:
    using Machine = Sm;

    Sm* get() const noexcept { return machine_.get(); }
    explicit operator bool() const noexcept { return static_cast<bool>(machine_); }

    /// The child made from these inputs: the one that is there, or a new one, which takes the
    /// place of the old one and silences it.
    template <class... A>
    Orin::Ptr<Sm> createOrReplace(const A&... given) {
        if (machine_ && machine_->isMadeFrom(given...)) return machine_;
        const Orin::Ptr<Sm> old = std::exchange(machine_, Sm::create(given...));
        if (old) old->hasNotificationActiveIs(false);
        return machine_;
    }
    /// Takes the child out, silences it and returns it; null if there was none.
    Orin::Ptr<Sm> remove() {
        Orin::Ptr<Sm> old = std::exchange(machine_, nullptr);
        if (old) old->hasNotificationActiveIs(false);
        return old;
    }
    /// Lets the child take its state back, then removes it. Nothing happens when there is none.
    void prepareAndRemove() {
        if (!machine_) return;
        machine_->doPrepareToDie();
        remove();
    }

    void activeIs(bool active) {
        if (machine_) machine_->hasNotificationActiveIs(active);
    }
    void clear() noexcept { machine_ = nullptr; }

private:
    Orin::Ptr<Sm> machine_;
};

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

    /// The child under the key of its first input, which is `keyOf(*first)`: the one that is there,
    /// or a new one. Throws the null-argument error, naming `attribute`, when the first input is
    /// null; the re-instantiation error when the one that is there was made from other inputs.
    template <class KeyOf, class First, class... A>
    Orin::Ptr<Sm> createOrKeep(std::string_view attribute, KeyOf keyOf,
                               const Orin::Ptr<First>& first, const A&... rest) {
        if (!first) throwMutatorArgNullPointerException(attribute);
        const K key = keyOf(*first);
        if (Sm* held = get(key)) {
            if (!held->isMadeFrom(first, rest...)) Impl::throwMutatorReinstantiating(attribute);
            return Orin::Ptr<Sm>(held);
        }
        return byKey_.enter(key, Sm::create(first, rest...)).value;
    }
    /// Removes the child under the key and returns it; null if there was none.
    Orin::Ptr<Sm> remove(const K& key) { return byKey_.remove(key).value_or(nullptr); }
    /// The pattern of every member handler: a member that is there gets its child through
    /// `create`; the child of one that is gone takes its state back and is removed.
    template <class Member, class Create>
    void reconcile(const K& key, const Member& member, Create create) {
        if (member)
            create(member);
        else
            prepareAndRemove(key);
    }
    /// Lets the child take its state back, then removes it. Nothing happens when there is none.
    void prepareAndRemove(const K& key) {
        Sm* gone = get(key);
        if (gone == nullptr) return;
        gone->doPrepareToDie();
        remove(key);
    }

    void activeIs(bool active) {
        for (const auto& member : byKey_)
            member.value->hasNotificationActiveIs(active);
    }
    void clear() noexcept { byKey_.clear(); }

private:
    Members byKey_;
};

}  // namespace Vex
