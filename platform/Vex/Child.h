#pragma once

#include <utility>

#include "platform/Orin/Ptr.h"
#include "platform/Vex/Turn.h"

namespace Vex {

/// A field with at most one child machine.
template <class Sm>
class Child {
public:
    using Machine = Sm;

    Sm* get() const noexcept { return machine_.get(); }
    explicit operator bool() const noexcept { return static_cast<bool>(machine_); }

    /// Returns the child of these inputs; creates it if absent, and then silences and removes a
    /// child of other inputs. The reference is valid until the child is removed.
    template <class... A>
    const Orin::Ptr<Sm>& createOrReplace(const A&... given) {
        if (machine_ && machine_->isMadeFrom(given...)) return machine_;
        Orin::Ptr<Sm> made = Sm::create(given...);
        const Orin::Ptr<Sm> old = std::exchange(machine_, std::move(made));
        if (old) old->hasNotificationActiveIs(false);
        return machine_;
    }
    /// Removes the child, silences it and returns it; null if there was none.
    Orin::Ptr<Sm> remove() {
        Orin::Ptr<Sm> old = std::exchange(machine_, nullptr);
        if (old) old->hasNotificationActiveIs(false);
        return old;
    }
    /// Makes the child match `member`, an attribute of the input. If the attribute has an entity,
    /// `create` creates its child. If not, the child takes back its state and is removed. If a
    /// subscriber changes the attribute during this, the child is removed and the attribute is read
    /// again. Returns false if the parent took back its state during this.
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
    /// Lets the child take back its state, then removes it. No-op if there is no child.
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
    /// Calls `work` with a new turn. Returns false if the parent ended during it.
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
    /// The running work; null if there is none.
    Turn* turn_ = nullptr;
};

}  // namespace Vex
