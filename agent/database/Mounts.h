#pragma once

#include <span>
#include <string>
#include <string_view>

namespace QosAgent {

/// A subtree of the database: where it can be mounted, and of what type it is.
struct MountPoint {
    std::string_view path;
    std::string_view type;
    bool isState;  ///< written by the plug-in alone, once that has started
};

/// All of them, in the order in which they are shown.
std::span<const MountPoint> mountPoints();
/// What is wrong with a path that leads into none of them.
std::string noSubtree(std::string_view path);

}  // namespace QosAgent
