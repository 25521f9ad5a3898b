#include "platform/Qos/Input/Config.h"

#include "platform/Vex/Derive.h"

namespace Qos::Input {

constinit const Vex::TypeRecord Config::kTypeRecord = Vex::recordOf<Config>();

Config::~Config() = default;

void Config::forwardingGroupNameToTcMapIs(const Orin::Ptr<ForwardingGroupNameToTcMap>& map) {
    attributeIs(kForwardingGroupNameToTcMap.id, forwardingGroupNameToTcMap_, map);
}

}  // namespace Qos::Input
