#pragma once

#include <utility>

namespace Vex {

/// Gives a pointer another value until the end of the scope.
template <class T>
class ScopedPointer {
public:
    ScopedPointer(T*& pointer, T* value) noexcept
        : pointer_(pointer), before_(std::exchange(pointer, value)) {}
    ~ScopedPointer() { pointer_ = before_; }
    ScopedPointer(const ScopedPointer&) = delete;
    ScopedPointer& operator=(const ScopedPointer&) = delete;

private:
    T*& pointer_;
    T* before_;
};

/// The work on one child: from the look at its member in the input until the child matches it.
///
/// A child that is being made or removed writes state, and a subscriber of that state may change
/// the member at once. The parent is notified of it in the middle of the work, so it only notes the
/// change here. Whoever works on the child sees the note, takes back what it made, and looks again.
class Turn {
public:
    /// Notes that the parent was notified of the member, which is now `entity`; null if it is gone.
    void memberIs(const void* entity) noexcept { isStale_ = isStale_ || entity != entity_; }
    /// Notes that the parent takes its state back: its child must not outlive that.
    void parentEnds() noexcept { parentEnds_ = true; }
    bool hasParentEnded() const noexcept { return parentEnds_; }

    /// Works until the child matches the member. `find` returns a pointer to the member's `Ptr`, or
    /// null if there is no member; `create` makes or keeps the child of that `Ptr`; `takeDown` lets
    /// the child take its state back and removes it, and is a no-op without a child.
    template <class Find, class Create, class TakeDown>
    void settle(Find find, Create create, TakeDown takeDown) {
        do {
            const auto* member = find();
            entity_ = member == nullptr ? nullptr : member->get();
            isStale_ = false;
            if (entity_ != nullptr)
                create(*member);
            else
                takeDown();
            if (!isStale_ && !parentEnds_) [[likely]]
                return;
            takeDown();
        } while (!parentEnds_);
    }

private:
    const void* entity_ = nullptr;
    bool isStale_ = false;
    bool parentEnds_ = false;
};

}  // namespace Vex
