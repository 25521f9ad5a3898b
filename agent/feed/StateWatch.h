#pragma once

#include <memory>

#include "agent/database/Database.h"
#include "agent/feed/Change.h"

namespace QosAgent {

class WatchedEntity;

/// Notifies a listener of each change of a subtree, from construction to destruction: an update
/// with the whole value, or a delete.
class StateWatch {
public:
    /// Whether the constructor notifies the listener of the present contents of the subtree.
    enum class Beginning { silent, notified };

    /// The listener must outlive the watch.
    StateWatch(const Subtree& subtree, ChangeListener& listener,
               Beginning beginning = Beginning::silent);
    ~StateWatch();

private:
    std::unique_ptr<WatchedEntity> root_;
};

}  // namespace QosAgent
