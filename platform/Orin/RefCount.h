#pragma once

#include <cstdint>

#include "platform/Orin/ThreadControl.h"

namespace Orin {

/// A count of owners, starting at 1: plain while one thread is active, atomic otherwise.
class RefCount {
public:
    void up() noexcept {
        if (ThreadControl::severalThreadsActive()) [[unlikely]]
            __atomic_fetch_add(&count_, 1, __ATOMIC_RELAXED);
        else
            ++count_;
    }
    /// True when this was the last owner.
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
