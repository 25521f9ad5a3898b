#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "agent/openconfig/Difference.h"
#include "agent/openconfig/NumberPool.h"
#include "agent/openconfig/Ownership.h"
#include "platform/Qos/Input/Config.h"

namespace QosAgent {

/// Keeps the traffic classes of the forwarding groups. There is no map where no document has
/// groups.
class ForwardingGroupWriter {
public:
    /// What is passed outlives the writer.
    ForwardingGroupWriter(Orin::Ptr<Qos::Input::Config> config, Ownership& ownership);

    /// Learns what others changed of the map since the earlier document was applied. To be called
    /// before each document.
    void learn(const OpenConfigDocument& earlier, const Touched& touched);
    /// Leaves the groups that stay their traffic classes, and gives new ones the least that no
    /// group of the map has: neither one that is removed nor one that others made.
    void number(const OpenConfigDocument& earlier, OpenConfigDocument& later,
                const Touched& touched);
    void writeComing(const Difference& difference);
    void removeGoing(const Difference& difference);

private:
    using Numbers = std::vector<std::uint32_t>;

    /// Learns what the map has under the name now.
    void learn(const Orin::String& name);
    /// Adds users of the numbers that groups keep though the map does not have them: others removed
    /// those groups.
    Numbers reserve(const OpenConfigDocument& earlier, const OpenConfigDocument& later,
                    const Touched& touched);
    /// The map, which is there from now on.
    Orin::Ptr<Qos::ForwardingGroupNameToTcMap> describedMap(bool wasDescribed);

    Orin::Ptr<Qos::Input::Config> config_;
    Ownership& ownership_;
    NumberPool numbers_;                                   ///< those of the map
    std::unordered_map<Orin::String, std::uint32_t> map_;  ///< the map, as far as it is learnt
};

}  // namespace QosAgent
