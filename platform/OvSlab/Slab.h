#pragma once

#include <cstddef>
#include <new>

#include "platform/Orin/Export.h"
#include "platform/Orin/ThreadControl.h"
#include "platform/OvSlab/Tracker.h"

namespace OvSlab {

/// For the inline functions below only.
namespace Impl {

inline constexpr std::size_t kGrain = 16;
inline constexpr std::size_t kLargest = 512;

struct FreeCell {
    FreeCell* next;
};
/// The free cells, by size in grains.
PLATFORM_API extern constinit FreeCell* freeCells[kLargest / kGrain + 1];
/// False if every request must take the slow path: with an allocation hook, or under sanitizers.
PLATFORM_API extern constinit bool isDirect;

/// Returns true if every request goes to the heap.
PLATFORM_API bool passesThrough() noexcept;
PLATFORM_API void* allocTheLongWay(std::size_t size, Tracker& tracker);
PLATFORM_API void freeTheLongWay(void* memory, std::size_t size, Tracker& tracker) noexcept;

/// At least one: a cell of size 0 would never use up a block.
constexpr std::size_t grainsOf(std::size_t size) noexcept {
    return size == 0 ? 1 : (size + kGrain - 1) / kGrain;
}
inline bool isTheShortWay(std::size_t size) noexcept {
    return size <= kLargest && isDirect && !Orin::ThreadControl::severalThreadsActive();
}

}  // namespace Impl

/// Allocates memory for one object of `size` bytes, counted by `tracker`. Up to 512 bytes come from
/// blocks that all types of one size share, larger objects from the heap. Blocks are kept for reuse
/// until the process ends. Throws `std::bad_alloc`; the count is unchanged then.
///
/// Builds with sanitizers pass every request on to the heap, so that a use after free is reported.
/// If `OVSLAB_CELLS` is defined, `Slab.cpp` uses cells in these builds, too, and poisons free
/// cells.
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
/// Frees memory that `slabAlloc` returned for the same size and tracker.
inline void slabFree(void* memory, std::size_t size, Tracker& tracker) noexcept {
    if (!Impl::isTheShortWay(size)) [[unlikely]] {
        Impl::freeTheLongWay(memory, size, tracker);
        return;
    }
    tracker.recordDeallocation();
    Impl::FreeCell*& cells = Impl::freeCells[Impl::grainsOf(size)];
    cells = new (memory) Impl::FreeCell{cells};
}

/// A function that is called with the size before every allocation. It may throw `std::bad_alloc`
/// to make the allocation fail. Null: none.
using AllocationHook = void (*)(std::size_t size);
PLATFORM_API void allocationHookIs(AllocationHook hook) noexcept;

/// The tracker of a type that has a `kTypeName`. Registered while the library that defines the type
/// is loaded.
template <class T>
struct PLATFORM_API TrackerOf {
    static inline Tracker tracker{T::kTypeName};
};

/// The base class of classes that are allocated from the slab with their own tracker. If a
/// constructor throws, the matching `operator delete` frees the memory.
template <class T>
class Slabbed {
public:
    static void* operator new(std::size_t size) { return slabAlloc(size, TrackerOf<T>::tracker); }
    static void operator delete(void* memory, std::size_t size) noexcept {
        slabFree(memory, size, TrackerOf<T>::tracker);
    }
};

}  // namespace OvSlab
