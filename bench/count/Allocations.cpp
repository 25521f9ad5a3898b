#include "bench/count/Allocations.h"

#include <malloc.h>

#include <cstdlib>
#include <new>

#include "platform/OvSlab/Tracker.h"

namespace {

constinit std::size_t fromHeap = 0;

void* heapAllocation(std::size_t size) {
    ++fromHeap;
    if (void* memory = std::malloc(size)) return memory;
    throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) {
    return heapAllocation(size);
}
void* operator new[](std::size_t size) {
    return heapAllocation(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace QosBench {

Allocations allocationsSoFar() noexcept {
    Allocations soFar{fromHeap, 0};
    for (const auto* tracker = OvSlab::Tracker::first(); tracker; tracker = tracker->next())
        soFar.slab += tracker->total();
    return soFar;
}

std::size_t heapBytes() noexcept {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

}  // namespace QosBench
