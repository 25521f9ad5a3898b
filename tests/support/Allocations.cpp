#include "tests/support/Allocations.h"

#include <malloc.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>

#include "platform/OvSlab/Slab.h"

namespace {

constexpr std::size_t kNever = ~std::size_t{0};

constinit std::atomic<std::size_t> requests{0};
constinit std::atomic<std::ptrdiff_t> blocks{0};
constinit std::atomic<std::size_t> requestsUntilFailure{kNever};
constinit std::atomic<bool> failed{false};

/// Every request passes here once; throws for the chosen one.
void request() {
    requests.fetch_add(1, std::memory_order_relaxed);
    const std::size_t left = requestsUntilFailure.load(std::memory_order_relaxed);
    if (left == kNever) return;
    requestsUntilFailure.store(left - 1, std::memory_order_relaxed);
    if (left != 0) return;
    failed.store(true, std::memory_order_relaxed);
    throw std::bad_alloc();
}

void slabRequest(std::size_t) {
    request();
}

/// Only the address sanitizer's heap knows exactly; others round up.
bool isSizeOf(void* memory, std::size_t size) {
    const std::size_t usable = ::malloc_usable_size(memory);
#if defined(__SANITIZE_ADDRESS__)
    return usable == (size == 0 ? 1 : size);
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
    return usable == (size == 0 ? 1 : size);
#endif
#endif
    return usable >= size;
}

}  // namespace

// Who asks like this can do without: it never fails, and is not counted as a request.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    void* memory = std::malloc(size == 0 ? 1 : size);
    if (memory != nullptr) blocks.fetch_add(1, std::memory_order_relaxed);
    return memory;
}

void* operator new(std::size_t size) {
    request();
    void* memory = operator new(size, std::nothrow);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

void operator delete(void* memory) noexcept {
    if (memory == nullptr) return;
    blocks.fetch_sub(1, std::memory_order_relaxed);
    std::free(memory);
}

void operator delete(void* memory, std::size_t size) noexcept {
    if (memory != nullptr && !isSizeOf(memory, size)) {
        std::fprintf(stderr, "a block of %zu bytes is deleted as one of %zu\n",
                     ::malloc_usable_size(memory), size);
        std::abort();
    }
    operator delete(memory);
}

// The default ones lead here by themselves, but not those of the sanitizers.
void* operator new[](std::size_t size) {
    return operator new(size);
}

void operator delete[](void* memory) noexcept {
    operator delete(memory);
}

void operator delete[](void* memory, std::size_t size) noexcept {
    operator delete(memory, size);
}

namespace TestSupport {

std::size_t allocations() noexcept {
    return requests.load(std::memory_order_relaxed);
}

std::ptrdiff_t outstandingBlocks() noexcept {
    return blocks.load(std::memory_order_relaxed);
}

FailingAllocation::FailingAllocation(std::size_t nth) noexcept {
    failed = false;
    OvSlab::allocationHookIs(slabRequest);
    requestsUntilFailure = nth;
}

FailingAllocation::~FailingAllocation() {
    requestsUntilFailure = kNever;
    OvSlab::allocationHookIs(nullptr);
}

bool FailingAllocation::hasFailed() const noexcept {
    return failed;
}

}  // namespace TestSupport
