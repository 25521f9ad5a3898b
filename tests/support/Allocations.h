#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <new>

/// Counts the allocations of the whole test program, and makes chosen ones fail. Both the slab and
/// `operator new` are watched; one request to the slab may also show as one to `operator new`.
namespace TestSupport {

/// Requests ever made, to either.
std::size_t allocations() noexcept;
/// Blocks from `operator new` that have not been deleted yet.
std::ptrdiff_t outstandingBlocks() noexcept;

/// While it exists the allocation number `nth`, counted from 0, throws `std::bad_alloc`, once.
/// Not nested.
class FailingAllocation {
public:
    explicit FailingAllocation(std::size_t nth) noexcept;
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// True once the allocation has failed.
    bool hasFailed() const noexcept;
};

/// Calls `attempt` again and again, with its first, second, ... allocation failing, until it runs
/// through; `afterFailure` is called after each failure, with allocations working again. `attempt`
/// lets `std::bad_alloc` out: the test fails where it does not. Returns the number of failures.
///
///     EXPECT_GT(failEachAllocation([&] { ShipSm::create(ship, board); },
///                                  [&] { EXPECT_EQ(live<ShipSm>(), 0u); }), 0u);
template <class Attempt, class AfterFailure>
std::size_t failEachAllocation(Attempt attempt, AfterFailure afterFailure) {
    for (std::size_t nth = 0;; ++nth) {
        try {
            const FailingAllocation failing(nth);
            attempt();
            if (!failing.hasFailed()) return nth;
            ADD_FAILURE() << "nobody noticed that allocation " << nth << " failed";
        } catch (const std::bad_alloc&) {
        }
        afterFailure();
    }
}

}  // namespace TestSupport
