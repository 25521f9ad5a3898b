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
    /// Another owner, unless the last one has gone: for who finds the object without owning it.
    bool upUnlessGone() noexcept {
        std::uint32_t count = value();
        while (count != 0 && !__atomic_compare_exchange_n(&count_, &count, count + 1, true,
                                                          __ATOMIC_ACQ_REL, __ATOMIC_RELAXED)) {
        }  // uncovered: fails only against another thread
        return count != 0;
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
