#pragma once

#include <cstddef>
#include <string_view>

#include "platform/Orin/Export.h"

namespace OvSlab {

/// Counts the objects of one type that came from the slab. Trackers are static objects; each is
/// listed from its construction to its destruction, so that a library takes its own along.
class PLATFORM_API Tracker {
public:
    explicit Tracker(std::string_view typeName) noexcept;
    Tracker(const Tracker&) = delete;
    Tracker& operator=(const Tracker&) = delete;
    ~Tracker();

    std::string_view typeName() const noexcept { return typeName_; }
    /// Objects that exist now.
    std::size_t live() const noexcept { return made_ - gone_; }
    /// Objects ever made.
    std::size_t total() const noexcept { return made_; }
    std::size_t objectSize() const noexcept { return objectSize_; }

    void recordAllocation(std::size_t size) noexcept {
        objectSize_ = size;
        ++made_;
    }
    void recordDeallocation() noexcept { ++gone_; }

    /// The next listed tracker, null at the end; `first()` begins.
    const Tracker* next() const noexcept { return next_; }
    static const Tracker* first() noexcept;
    /// The tracker of the type with this full name; null if none is listed.
    static const Tracker* find(std::string_view typeName) noexcept;

private:
    std::string_view typeName_;
    std::size_t made_ = 0;
    std::size_t gone_ = 0;
    std::size_t objectSize_ = 0;
    Tracker* next_;
};

}  // namespace OvSlab
