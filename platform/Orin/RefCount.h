#pragma once

#include <cstdint>

#include "platform/Orin/ThreadControl.h"

namespace Orin {

/// A reference count that starts at 1. Plain while one thread is active, atomic otherwise.
class RefCount {
public:
    void up() noexcept {
        if (ThreadControl::severalThreadsActive()) [[unlikely]]
            __atomic_fetch_add(&count_, 1, __ATOMIC_RELAXED);
        else
            ++count_;
    }
    /// Adds a reference unless the count is 0; returns whether it did. For callers without one.
    bool upUnlessGone() noexcept {
        std::uint32_t count = value();
        while (count != 0 && !__atomic_compare_exchange_n(&count_, &count, count + 1, true,
                                                          __ATOMIC_ACQ_REL, __ATOMIC_RELAXED)) {
        }  // uncovered: fails only against another thread
        return count != 0;
    }
    /// Removes a reference. Returns true if it was the last one.
    bool down() noexcept {
        if (ThreadControl::severalThreadsActive()) [[unlikely]]
            return __atomic_sub_fetch(&count_, 1, __ATOMIC_ACQ_REL) == 0;
        return --count_ == 0;
    }
    std::uint32_t value() const noexcept { return __atomic_load_n(&count_, __ATOMIC_RELAXED); }

private:
    std::uint32_t count_ = 1;
};

}  // namespace Orin
