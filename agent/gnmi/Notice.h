#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "agent/gnmi/Path.h"

namespace QosAgent::Gnmi {

/// How values are written, with the numbers of the protocol.
enum class Encoding { json = 0, proto = 2, jsonIetf = 4 };

/// A new value of a node: of a leaf, or, in answers to a Get, of a container.
struct NodeUpdate {
    DataPath path;
    std::string json;
    std::uint32_t duplicates = 0;  ///< earlier values that nobody will see

    friend bool operator==(const NodeUpdate&, const NodeUpdate&) = default;
};

/// What happened at one moment to nodes that belong together. No path stands in it twice, and no
/// update is at or below a delete.
struct Notice {
    std::int64_t timestamp = 0;  ///< nanoseconds since 1970
    std::vector<DataPath> deletes;
    std::vector<NodeUpdate> updates;

    bool isEmpty() const { return deletes.empty() && updates.empty(); }
    friend bool operator==(const Notice&, const Notice&) = default;
};

/// The list entry that a node is in, or that it is; the root for a node outside all lists.
DataPath entryOf(const DataPath& node);

}  // namespace QosAgent::Gnmi
