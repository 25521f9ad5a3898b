#include "bench/count/Allocations.h"

#include <malloc.h>

#include <cstdlib>
#include <new>

#include "platform/OvSlab/Slab.h"

namespace {

constinit QosBench::Allocations made;

void* heapAllocation(std::size_t size) {
    ++made.heap;
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
    OvSlab::allocationHookIs([](std::size_t) { ++made.slab; });
    return made;
}

std::size_t heapBytes() noexcept {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

}  // namespace QosBench
