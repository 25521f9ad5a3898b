#include "platform/OvSlab/Slab.h"

#include <mutex>
#include <new>

#include "platform/Orin/ThreadLock.h"

// A build may define it, too, for a checker that works on the finished program.
#if defined(OVSLAB_PASS_THROUGH)
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

constexpr std::size_t kBlockBytes = std::size_t{64} * 1024;

/// The first cell's worth of a block links the blocks, so that leak checkers see them all.
struct Block {
    Block* next;
};

constinit Block* blocks = nullptr;
constinit AllocationHook allocationHook = nullptr;
constinit std::mutex slabMutex;

bool isFromHeap(std::size_t size) noexcept {
    return kPassThrough || size > kLargest;
}

FreeCell* newBlock(std::size_t cellBytes) {
    auto* bytes = static_cast<std::byte*>(::operator new(kBlockBytes));
    blocks = new (bytes) Block{blocks};
    FreeCell* cells = nullptr;
    for (std::size_t end = kBlockBytes; end >= kGrain + cellBytes; end -= cellBytes)
        cells = new (bytes + end - cellBytes) FreeCell{cells};
    return cells;
}

void* takeCell(std::size_t size) {
    const std::size_t grains = grainsOf(size);
    FreeCell*& cells = freeCells[grains];
    if (cells == nullptr) cells = newBlock(grains * kGrain);
    FreeCell* cell = cells;
    cells = cell->next;
    return cell;
}

}  // namespace

constinit FreeCell* freeCells[kLargest / kGrain + 1]{};
constinit bool isDirect = !kPassThrough;

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
        ::operator delete(memory);
        return;
    }
    FreeCell*& cells = freeCells[grainsOf(size)];
    cells = new (memory) FreeCell{cells};
}

}  // namespace Impl

void allocationHookIs(AllocationHook hook) noexcept {
    Impl::allocationHook = hook;
    Impl::isDirect = !Impl::kPassThrough && hook == nullptr;
}

}  // namespace OvSlab
