#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "agent/gnmi/Notice.h"
#include "agent/gnmi/Query.h"
#include "agent/gnmi/Refusal.h"

namespace gnmi {
class SubscribeRequest;
}  // namespace gnmi

namespace QosAgent::Gnmi {

inline constexpr std::size_t kMostSubscriptions = 64;
inline constexpr std::chrono::nanoseconds kLeastInterval = std::chrono::milliseconds(100);

enum class StreamMode { stream, once, poll };

/// Leaves that are sent again at regular intervals.
struct Repetition {
    Query query;
    std::chrono::nanoseconds interval;
    /// Only those that changed since the last time.
    bool onlyChanged = false;
};

/// What a client of a Subscribe stream asked for.
struct SubscriptionList {
    StreamMode mode = StreamMode::stream;
    Encoding encoding = Encoding::json;
    std::string target;
    bool updatesOnly = false;
    Query all;                            ///< what is sent at the beginning, or at each poll
    Query onChange;                       ///< what is sent whenever it changes
    std::vector<Repetition> repetitions;  ///< samples and heartbeats
    /// Equal for two lists of which `onChange` means the same in the same encoding.
    std::string sharedKey;
};

/// The list of a stream's first message, or why the stream ends.
OrRefusal<SubscriptionList> subscriptionsOf(const gnmi::SubscribeRequest& request);

}  // namespace QosAgent::Gnmi
