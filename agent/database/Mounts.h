#pragma once

#include <span>
#include <string>
#include <string_view>

namespace QosAgent {

/// A subtree of the database: its mount path and its type.
struct MountPoint {
    std::string_view path;
    std::string_view type;
    bool isState;  ///< after the plug-in has started, only the plug-in writes it
};

/// Returns all mount points, in the order of printing.
std::span<const MountPoint> mountPoints();
/// Returns the message for a path that leads into none of them.
std::string noSubtree(std::string_view path);

}  // namespace QosAgent
