#pragma once

#include <cstddef>

#include "platform/OvSlab/Slab.h"

namespace OvSlab {

/// Counts the memory of standard containers.
struct PLATFORM_API ContainerMemory {
    static constexpr std::string_view kTypeName = "OvSlab::ContainerMemory";
};

/// An allocator for standard containers that takes memory from the slab.
template <class T>
struct Allocator {
    using value_type = T;

    Allocator() noexcept = default;
    template <class U>
    Allocator(const Allocator<U>&) noexcept {}

    T* allocate(std::size_t count) {
        return static_cast<T*>(slabAlloc(count * sizeof(T), TrackerOf<ContainerMemory>::tracker));
    }
    void deallocate(T* memory, std::size_t count) noexcept {
        slabFree(memory, count * sizeof(T), TrackerOf<ContainerMemory>::tracker);
    }
    friend bool operator==(const Allocator&, const Allocator&) noexcept { return true; }
};

}  // namespace OvSlab
