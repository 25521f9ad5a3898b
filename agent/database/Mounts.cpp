#include "agent/database/Mounts.h"

#include <algorithm>

#include "agent/json/Excerpt.h"
#include "agent/json/Suggestion.h"

namespace QosAgent {
namespace {

constexpr MountPoint kMountPoints[] = {
    {"qos/status", "Qos::Status", false},
    {"qos/input/config/cli", "Qos::Input::Config", false},
    {"acl/config/cli", "Acl::Input::Config", false},
    {"qos/openconfig/config/classifiers", "QosOc::Config::ClassifiersDir", false},
    {"qos/openconfig/state/classifiers", "QosOc::State::ClassifiersDir", true},
};

/// Returns the first parts of `path`, as many as `other` has.
std::string_view leadingParts(std::string_view path, std::string_view other) {
    std::size_t end = path.find('/');
    for (auto more = std::count(other.begin(), other.end(), '/'); more > 0; --more)
        if (end != std::string_view::npos) end = path.find('/', end + 1);
    return path.substr(0, end);
}

}  // namespace

std::span<const MountPoint> mountPoints() {
    return kMountPoints;
}

std::string noSubtree(std::string_view path) {
    const std::string fault = "no subtree is mounted at the path " + excerpt(path);
    if (path.starts_with('/')) path.remove_prefix(1);
    for (const MountPoint& mount : kMountPoints) {
        const std::string_view known[] = {mount.path};
        const std::string near = suggestion(leadingParts(path, mount.path), known);
        if (!near.empty()) return fault + near;
    }
    return fault;
}

}  // namespace QosAgent
