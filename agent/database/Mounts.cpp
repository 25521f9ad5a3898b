#include "agent/database/Mounts.h"

namespace QosAgent {
namespace {

constexpr MountPoint kMountPoints[] = {
    {"qos/status", "Qos::Status", false},
    {"qos/input/config/cli", "Qos::Input::Config", false},
    {"acl/config/cli", "Acl::Input::Config", false},
    {"qos/openconfig/config/classifiers", "QosOc::Config::ClassifiersDir", false},
    {"qos/openconfig/state/classifiers", "QosOc::State::ClassifiersDir", true},
};

}  // namespace

std::span<const MountPoint> mountPoints() {
    return kMountPoints;
}

}  // namespace QosAgent
