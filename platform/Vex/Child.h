#pragma once

#include <utility>

#include "platform/Orin/Ptr.h"

namespace Vex {

/// At most one child machine.
template <class Sm>
class Child {
public:
    using Machine = Sm;

    Sm* get() const noexcept { return machine_.get(); }
    explicit operator bool() const noexcept { return static_cast<bool>(machine_); }

    /// The child made from these inputs: the one that is there, or a new one, which takes the
    /// place of the old one and silences it. The reference is good while the child is there.
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
    /// Lets the child take its state back, then removes it. Nothing happens when there is none.
    void prepareAndRemove() {
        const Orin::Ptr<Sm> gone = machine_;
        if (!gone) return;
        gone->doPrepareToDie();
        if (machine_ == gone) remove();
    }

    void activeIs(bool active) {
        if (machine_) machine_->hasNotificationActiveIs(active);
    }
    void clear() noexcept { machine_ = nullptr; }

private:
    Orin::Ptr<Sm> machine_;
};

}  // namespace Vex
