#pragma once

#include <utility>

namespace Vex {

/// Sets a pointer to another value until the end of the scope.
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

/// The work on one child, from reading its member in the input until the child matches it.
///
/// A child that is being created or removed writes state, and a subscriber of that state may change
/// the member at once. The parent, notified in the middle of the work, only notes this here. When
/// the child is done, the work sees the note, removes the child, and reads the member again.
class Turn {
public:
    /// Notes that the parent was notified of the member, which is now `entity`; null if absent.
    void memberIs(const void* entity) noexcept { isStale_ = isStale_ || entity != entity_; }
    /// Notes that the parent takes back its state: its child must not outlive that.
    void parentEnds() noexcept { parentEnds_ = true; }
    bool hasParentEnded() const noexcept { return parentEnds_; }

    /// Works until the child matches the member. `find` returns a pointer to the member's `Ptr`, or
    /// null if absent. `create` creates or keeps the child of that `Ptr`. `takeDown` lets the child
    /// take back its state and removes it; it is a no-op if there is no child.
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
