#pragma once

#include <vector>

#include "agent/feed/ChangeSet.h"

namespace QosAgent {

/// One reader of the published state. It starts with a snapshot and then receives every later
/// change exactly once: there is no gap and no overlap between the two.
///
/// Any one thread at a time may use it. To destroy it ends the subscription: its `wake` is not
/// called afterwards, and is not running any more when the destructor returns.
class Subscription {
public:
    virtual ~Subscription() = default;

    /// The state with which the subscription started.
    virtual const Snapshot& start() const = 0;
    /// Takes the change sets that wait, oldest first; empty if none wait. Those of a reader that
    /// falls behind are merged, so that what waits is bounded by the size of the state.
    virtual std::vector<ChangeSetPtr> take() = 0;
};

}  // namespace QosAgent
