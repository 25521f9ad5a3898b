#include "platform/Qos/ForwardingGroupNameToTcMap.h"

#include "platform/Vex/Derive.h"

namespace Qos {

constinit const Vex::TypeRecord ForwardingGroupNameToTcMap::kTypeRecord =
    Vex::recordOf<ForwardingGroupNameToTcMap>();

ForwardingGroupNameToTcMap::~ForwardingGroupNameToTcMap() = default;

void ForwardingGroupNameToTcMap::tcIs(const Orin::String& forwardingGroup,
                                      std::uint32_t trafficClass) {
    memberIs(kTc.id, tc_, forwardingGroup, trafficClass);
}

void ForwardingGroupNameToTcMap::tcDel(const Orin::String& forwardingGroup) {
    memberDel(kTc.id, tc_, forwardingGroup);
}

}  // namespace Qos
