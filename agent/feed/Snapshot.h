#pragma once

#include <chrono>
#include <cstdint>

#include "agent/configuration/ConfigurationTree.h"
#include "agent/feed/PolicyMapNames.h"
#include "agent/feed/StateMap.h"

namespace QosAgent {

/// The published state as it is after one request: immutable, shared, cheap to copy. Any thread may
/// keep and read it.
struct Snapshot {
    /// How many requests were applied before.
    std::uint64_t sequence = 0;
    /// When the last of them was applied. Never decreases from one snapshot to a later one.
    std::chrono::system_clock::time_point time;
    StateMap state;
    /// The OpenConfig configuration as it was given.
    ConfigurationTree configuration = {};
    /// Those of type `mapQos`.
    PolicyMapNames policyMaps = {};
};

}  // namespace QosAgent
