#pragma once

#include "agent/openconfig/Difference.h"
#include "agent/openconfig/Found.h"
#include "platform/Qos/Input/Config.h"

namespace QosAgent {

/// Keeps the traffic classes of the forwarding groups. There is no map where no document has
/// groups.
class ForwardingGroupWriter {
public:
    /// What is passed outlives the writer.
    ForwardingGroupWriter(Orin::Ptr<Qos::Input::Config> config, Found& found);

    /// Leaves the groups that stay their traffic classes, and gives new ones the least that are
    /// free: those of groups that go are, those that others have set are not.
    void number(const OpenConfigDocument& earlier, OpenConfigDocument& later) const;
    void writeComing(const Difference& difference);
    void removeGoing(const Difference& difference);

private:
    Orin::Ptr<Qos::Input::Config> config_;
    Found& found_;
};

}  // namespace QosAgent
