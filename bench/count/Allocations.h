#pragma once

#include <cstddef>

namespace QosBench {

/// How often this program asked for memory.
struct Allocations {
    std::size_t heap = 0;  ///< by `operator new`
    std::size_t slab = 0;

    friend Allocations operator-(Allocations a, Allocations b) noexcept {
        return {a.heap - b.heap, a.slab - b.slab};
    }
    Allocations& operator+=(Allocations other) noexcept {
        heap += other.heap;
        slab += other.slab;
        return *this;
    }
};

/// All so far.
Allocations allocationsSoFar() noexcept;
/// The bytes that the heap has given out and not got back, with what it spends on each piece.
std::size_t heapBytes() noexcept;

}  // namespace QosBench
