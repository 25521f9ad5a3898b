#pragma once

#include <vector>

#include "agent/feed/ChangeSet.h"

namespace QosAgent {

/// One reader of the published state. It starts with a snapshot and then receives every later
/// change exactly once: there is no gap and no overlap between the two.
///
/// One thread at a time may use it, whichever it is. The destructor ends the subscription: when it
/// returns, `wake` is not running and will not be called again.
class Subscription {
public:
    virtual ~Subscription() = default;

    /// The state with which the subscription started.
    virtual const Snapshot& start() const = 0;
    /// Removes and returns the waiting change sets, oldest first. If the reader falls behind they
    /// are merged, so that their size is bounded by the size of the state.
    virtual std::vector<ChangeSetPtr> take() = 0;
};

}  // namespace QosAgent
