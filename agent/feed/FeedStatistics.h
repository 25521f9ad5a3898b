#pragma once

#include <cstddef>
#include <cstdint>

namespace QosAgent {

/// What the feed counts, since the first reader was there.
struct FeedStatistics {
    std::uint64_t updates = 0;  ///< published changes that brought a value
    std::uint64_t deletes = 0;  ///< published changes that removed something
    std::size_t subscribers = 0;
    /// Change sets that subscribers have not taken yet.
    std::size_t waiting = 0;
    /// Published changes that a subscriber does not get one by one, because it fell behind.
    std::uint64_t merged = 0;

    friend bool operator==(const FeedStatistics&, const FeedStatistics&) = default;
};

}  // namespace QosAgent
