#pragma once

#include <cstddef>

#include "platform/Orin/Export.h"
#include "platform/OvSlab/Tracker.h"

namespace OvSlab {

/// Memory for one object of `size` bytes, counted by `tracker`. Sizes up to 512 bytes come from
/// blocks shared by all types of that size, larger ones from the heap; blocks are kept for reuse
/// until the process ends. Throws `std::bad_alloc`, and then counts nothing.
///
/// Builds with sanitizers pass every request through to the heap, so that a use after free stays
/// visible to them.
PLATFORM_API void* slabAlloc(std::size_t size, Tracker& tracker);
/// Takes back what `slabAlloc` gave out for the same size and tracker.
PLATFORM_API void slabFree(void* memory, std::size_t size, Tracker& tracker) noexcept;

/// Called before every allocation with its size; throws `std::bad_alloc` to make it fail.
/// Null: none.
using AllocationHook = void (*)(std::size_t size);
PLATFORM_API void allocationHookIs(AllocationHook hook) noexcept;

/// The tracker of a type that names itself with `kTypeName`; listed from load to unload of the
/// library that defines the type.
template <class T>
struct PLATFORM_API TrackerOf {
    static inline Tracker tracker{T::kTypeName};
};

/// Gives a class slab allocation under its own tracker. A constructor that throws gives its memory
/// back by the matching `operator delete`.
template <class T>
class Slabbed {
public:
    static void* operator new(std::size_t size) { return slabAlloc(size, TrackerOf<T>::tracker); }
    static void operator delete(void* memory, std::size_t size) noexcept {
        slabFree(memory, size, TrackerOf<T>::tracker);
    }
};

}  // namespace OvSlab
