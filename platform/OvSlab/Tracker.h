#pragma once

#include <cstddef>
#include <string_view>

#include "platform/Orin/Export.h"

namespace OvSlab {

/// Counts the objects of one type that are allocated from the slab. A static object that is
/// registered as long as it exists, so that unloading a library removes its trackers.
class PLATFORM_API Tracker {
public:
    explicit Tracker(std::string_view typeName) noexcept;
    Tracker(const Tracker&) = delete;
    Tracker& operator=(const Tracker&) = delete;
    ~Tracker();

    std::string_view typeName() const noexcept { return typeName_; }
    /// The number of live objects.
    std::size_t live() const noexcept { return made_ - gone_; }
    /// The number of objects that were ever allocated.
    std::size_t total() const noexcept { return made_; }
    std::size_t objectSize() const noexcept { return objectSize_; }

    void recordAllocation(std::size_t size) noexcept {
        objectSize_ = size;
        ++made_;
    }
    void recordDeallocation() noexcept { ++gone_; }

    /// Returns the next registered tracker; null at the end. Begin with `first()`.
    const Tracker* next() const noexcept { return next_; }
    static const Tracker* first() noexcept;
    /// Returns the tracker of the type with this full name; null if there is none.
    static const Tracker* find(std::string_view typeName) noexcept;

private:
    std::string_view typeName_;
    std::size_t made_ = 0;
    std::size_t gone_ = 0;
    std::size_t objectSize_ = 0;
    Tracker* next_;
};

}  // namespace OvSlab
