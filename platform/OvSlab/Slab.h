#pragma once

#include <cstddef>
#include <new>

#include "platform/Orin/Export.h"
#include "platform/Orin/ThreadControl.h"
#include "platform/OvSlab/Tracker.h"

namespace OvSlab {

/// What the inline functions below stand on; for them alone.
namespace Impl {

inline constexpr std::size_t kGrain = 16;
inline constexpr std::size_t kLargest = 512;

struct FreeCell {
    FreeCell* next;
};
/// Free cells by their size in grains.
PLATFORM_API extern constinit FreeCell* freeCells[kLargest / kGrain + 1];
/// False where every request takes the long way: with an allocation hook, or under sanitizers.
PLATFORM_API extern constinit bool isDirect;

/// True if every request goes to the heap.
PLATFORM_API bool passesThrough() noexcept;
PLATFORM_API void* allocTheLongWay(std::size_t size, Tracker& tracker);
PLATFORM_API void freeTheLongWay(void* memory, std::size_t size, Tracker& tracker) noexcept;

/// At least one: a cell of no size would never be taken from a block.
constexpr std::size_t grainsOf(std::size_t size) noexcept {
    return size == 0 ? 1 : (size + kGrain - 1) / kGrain;
}
inline bool isTheShortWay(std::size_t size) noexcept {
    return size <= kLargest && isDirect && !Orin::ThreadControl::severalThreadsActive();
}

}  // namespace Impl

/// Memory for one object of `size` bytes, counted by `tracker`. Sizes up to 512 bytes come from
/// blocks shared by all types of that size, larger ones from the heap; blocks are kept for reuse
/// until the process ends. Throws `std::bad_alloc`, and then counts nothing.
///
/// Builds with sanitizers pass every request through to the heap, so that they see a use after
/// free. With `OVSLAB_CELLS` defined, `Slab.cpp` gives out cells all the same, and free cells are
/// poisoned.
inline void* slabAlloc(std::size_t size, Tracker& tracker) {
    if (Impl::isTheShortWay(size)) [[likely]] {
        Impl::FreeCell*& cells = Impl::freeCells[Impl::grainsOf(size)];
        if (Impl::FreeCell* cell = cells) [[likely]] {
            cells = cell->next;
            tracker.recordAllocation(size);
            return cell;
        }
    }
    return Impl::allocTheLongWay(size, tracker);
}
/// Takes back what `slabAlloc` gave out for the same size and tracker.
inline void slabFree(void* memory, std::size_t size, Tracker& tracker) noexcept {
    if (!Impl::isTheShortWay(size)) [[unlikely]] {
        Impl::freeTheLongWay(memory, size, tracker);
        return;
    }
    tracker.recordDeallocation();
    Impl::FreeCell*& cells = Impl::freeCells[Impl::grainsOf(size)];
    cells = new (memory) Impl::FreeCell{cells};
}

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
