#pragma once

#include "agent/openconfig/Difference.h"
#include "agent/openconfig/Ownership.h"
#include "platform/Qos/Input/Config.h"

namespace QosAgent {

/// Keeps the traffic classes of the forwarding groups. There is no map where no document has
/// groups.
class ForwardingGroupWriter {
public:
    /// What is passed outlives the writer.
    ForwardingGroupWriter(Orin::Ptr<Qos::Input::Config> config, Ownership& ownership);

    /// Leaves the groups that stay their traffic classes, and gives new ones the least that no
    /// group of the map has: neither one that is removed nor one that others made.
    void number(const OpenConfigDocument& earlier, OpenConfigDocument& later) const;
    void writeComing(const Difference& difference);
    void removeGoing(const Difference& difference);

private:
    /// The map, which is there from now on.
    Orin::Ptr<Qos::ForwardingGroupNameToTcMap> describedMap(bool wasDescribed);

    Orin::Ptr<Qos::Input::Config> config_;
    Ownership& ownership_;
};

}  // namespace QosAgent
