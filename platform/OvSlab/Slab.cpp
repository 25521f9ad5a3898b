#include "platform/OvSlab/Slab.h"

#include <sanitizer/asan_interface.h>

#include <mutex>
#include <new>

#include "platform/Orin/ThreadLock.h"

// A build may define `OVSLAB_PASS_THROUGH`, too, for a checker that works on the finished program.
#if defined(OVSLAB_CELLS)
#undef OVSLAB_PASS_THROUGH
#elif defined(OVSLAB_PASS_THROUGH)
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define OVSLAB_PASS_THROUGH 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || \
    __has_feature(memory_sanitizer)
#define OVSLAB_PASS_THROUGH 1
#endif
#endif

namespace OvSlab {
namespace Impl {
namespace {

#ifdef OVSLAB_PASS_THROUGH
constexpr bool kPassThrough = true;
#else
constexpr bool kPassThrough = false;
#endif

#ifdef OVSLAB_CELLS
constexpr bool kPoisons = true;
#else
constexpr bool kPoisons = false;
#endif

constexpr std::size_t kBlockBytes = std::size_t{64} * 1024;

/// The first cell of each block links the blocks, so that leak checkers see them all.
struct Block {
    Block* next;
};

constinit Block* blocks = nullptr;
constinit AllocationHook allocationHook = nullptr;
constinit std::mutex slabMutex;

bool isFromHeap(std::size_t size) noexcept {
    return kPassThrough || size > kLargest;
}

/// Adds a cell at the front of the list of free cells.
void putCell(FreeCell*& cells, void* memory, std::size_t cellBytes) noexcept {
    cells = new (memory) FreeCell{cells};
    if (kPoisons) ASAN_POISON_MEMORY_REGION(memory, cellBytes);
}

FreeCell* newBlock(std::size_t cellBytes) {
    auto* bytes = static_cast<std::byte*>(::operator new(kBlockBytes));
    blocks = new (bytes) Block{blocks};
    FreeCell* cells = nullptr;
    for (std::size_t end = kBlockBytes; end >= kGrain + cellBytes; end -= cellBytes)
        putCell(cells, bytes + end - cellBytes, cellBytes);
    return cells;
}

void* takeCell(std::size_t size) {
    const std::size_t cellBytes = grainsOf(size) * kGrain;
    FreeCell*& cells = freeCells[grainsOf(size)];
    if (cells == nullptr) cells = newBlock(cellBytes);
    FreeCell* cell = cells;
    if (kPoisons) ASAN_UNPOISON_MEMORY_REGION(cell, cellBytes);
    cells = cell->next;
    return cell;
}

}  // namespace

constinit FreeCell* freeCells[kLargest / kGrain + 1]{};
constinit bool isDirect = !kPassThrough && !kPoisons;

void* allocTheLongWay(std::size_t size, Tracker& tracker) {
    if (allocationHook != nullptr) [[unlikely]]
        allocationHook(size);
    const Orin::ThreadLock lock(slabMutex);
    void* memory = isFromHeap(size) ? ::operator new(size) : takeCell(size);
    tracker.recordAllocation(size);
    return memory;
}

void freeTheLongWay(void* memory, std::size_t size, Tracker& tracker) noexcept {
    const Orin::ThreadLock lock(slabMutex);
    tracker.recordDeallocation();
    if (isFromHeap(size)) {
        ::operator delete(memory, size);
        return;
    }
    putCell(freeCells[grainsOf(size)], memory, grainsOf(size) * kGrain);
}

bool passesThrough() noexcept {
    return kPassThrough;
}

}  // namespace Impl

void allocationHookIs(AllocationHook hook) noexcept {
    Impl::allocationHook = hook;
    Impl::isDirect = !Impl::kPassThrough && !Impl::kPoisons && hook == nullptr;
}

}  // namespace OvSlab
