#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "agent/feed/FeedStatistics.h"

namespace QosAgent {

/// How often something took how long.
struct TimeHistogram {
    /// The upper ends of the buckets, in seconds. One more bucket holds what took longer.
    static constexpr std::array kBounds{0.00001, 0.000025, 0.0001, 0.00025, 0.001, 0.0025, 0.01,
                                        0.025,   0.1,      0.25,   1.0,     2.5,   10.0};

    std::array<std::uint64_t, kBounds.size() + 1> counts{};  ///< of each bucket alone
    std::chrono::nanoseconds sum{};

    void add(std::chrono::nanoseconds time) {
        const double seconds = std::chrono::duration<double>(time).count();
        const auto at = std::ranges::lower_bound(kBounds, seconds) - kBounds.begin();
        ++counts[static_cast<std::size_t>(at)];
        sum += time;
    }

    friend bool operator==(const TimeHistogram&, const TimeHistogram&) = default;
};

/// What the service counts about requests.
struct RequestStatistics {
    struct Lines {
        std::uint64_t applied = 0;
        std::uint64_t refused = 0;
        friend bool operator==(const Lines&, const Lines&) = default;
    };
    /// By the door through which they came, as `Request::door` names it.
    std::map<std::string, Lines, std::less<>> lines;
    TimeHistogram applyTimes;      ///< of the lines
    std::size_t waiting = 0;       ///< requests that are not begun
    std::uint64_t turnedAway = 0;  ///< requests answered as busy

    friend bool operator==(const RequestStatistics&, const RequestStatistics&) = default;
};

/// What a door counts that has streams of its own clients. Any thread may add and read.
struct StreamCounters {
    std::atomic<std::size_t> streams{0};       ///< open now
    std::atomic<std::size_t> waitingBytes{0};  ///< that their clients have not taken
    /// Values that a client does not get one by one, because it fell behind.
    std::atomic<std::uint64_t> merged{0};
};

/// The same at one moment.
struct StreamStatistics {
    std::size_t streams = 0;
    std::size_t waitingBytes = 0;
    std::uint64_t merged = 0;

    friend bool operator==(const StreamStatistics&, const StreamStatistics&) = default;
};

/// What a store counts.
struct StoreStatistics {
    bool isAway = false;        ///< it cannot be reached now
    TimeHistogram commitTimes;  ///< of the transactions that it keeps

    friend bool operator==(const StoreStatistics&, const StoreStatistics&) = default;
};

/// What the program knows about itself at one moment; plain data for doors.
struct Statistics {
    /// Objects of one type of the plug-in or the database.
    struct Objects {
        std::string type;  ///< full name, such as `QosOc::ClassifierStateSm`
        std::size_t live = 0;
        friend bool operator==(const Objects&, const Objects&) = default;
    };

    std::string version;  ///< of the program
    RequestStatistics requests;
    FeedStatistics feed;
    std::vector<Objects> machines;  ///< those of which there is at least one
    std::size_t socketConnections = 0;
    StreamStatistics grpc;                 ///< of the gNMI door
    std::optional<StoreStatistics> store;  ///< absent without a store

    friend bool operator==(const Statistics&, const Statistics&) = default;
};

}  // namespace QosAgent
