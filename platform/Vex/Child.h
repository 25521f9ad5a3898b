#pragma once

#include <utility>

#include "platform/Orin/Ptr.h"
#include "platform/Vex/Turn.h"

namespace Vex {

/// At most one child machine.
template <class Sm>
class Child {
public:
    using Machine = Sm;

    Sm* get() const noexcept { return machine_.get(); }
    explicit operator bool() const noexcept { return static_cast<bool>(machine_); }

    /// Returns the child made from these inputs: the present one, or a new one, which replaces and
    /// silences the old one. The reference is valid while the child is there.
    template <class... A>
    const Orin::Ptr<Sm>& createOrReplace(const A&... given) {
        if (machine_ && machine_->isMadeFrom(given...)) return machine_;
        Orin::Ptr<Sm> made = Sm::create(given...);
        const Orin::Ptr<Sm> old = std::exchange(machine_, std::move(made));
        if (old) old->hasNotificationActiveIs(false);
        return machine_;
    }
    /// Takes the child out, silences it and returns it; null if there was none.
    Orin::Ptr<Sm> remove() {
        Orin::Ptr<Sm> old = std::exchange(machine_, nullptr);
        if (old) old->hasNotificationActiveIs(false);
        return old;
    }
    /// Makes the child match `member`, an attribute of the input: `create` makes the child of an
    /// entity that is there; the child of one that is gone takes its state back and is removed.
    /// If a subscriber changes the attribute meanwhile, the child is removed and the attribute is
    /// looked at again. Returns false if the parent has taken its state back meanwhile.
    template <class E, class Create>
    bool reconcile(const Orin::Ptr<E>& member, Create create) {
        if (turn_ != nullptr) [[unlikely]] {
            turn_->memberIs(member.get());
            return true;
        }
        return inTurn([&](Turn& turn) {
            turn.settle([&] { return &member.asConst(); }, create, [this] { takeDown(); });
        });
    }
    /// Lets the child take its state back, then removes it. No-op without a child.
    void prepareAndRemove() {
        if (turn_ != nullptr) [[unlikely]] {
            turn_->parentEnds();
            return;
        }
        inTurn([this](Turn& turn) {
            turn.parentEnds();
            takeDown();
        });
    }

    void activeIs(bool active) {
        if (machine_) machine_->hasNotificationActiveIs(active);
    }
    void clear() noexcept { machine_ = nullptr; }

private:
    /// Calls `work` with a turn of its own. False if the parent has ended in it.
    template <class Work>
    bool inTurn(Work work) {
        Turn turn;
        const ScopedPointer<Turn> current(turn_, &turn);
        work(turn);
        return !turn.hasParentEnded();
    }
    void takeDown() {
        const Orin::Ptr<Sm> gone = machine_;
        if (!gone) return;
        gone->doPrepareToDie();
        if (machine_ == gone) remove();
    }

    Orin::Ptr<Sm> machine_;
    /// The work that is under way; null if there is none.
    Turn* turn_ = nullptr;
};

}  // namespace Vex
