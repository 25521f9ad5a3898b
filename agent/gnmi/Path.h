#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "agent/gnmi/Schema.h"

namespace QosAgent::Gnmi {

/// One element of a requested path, as the client wrote it. `*` and `...` as the name, and `*` as
/// the value of a key, are wildcards.
struct PathElement {
    std::string name;
    std::map<std::string, std::string, std::less<>> keys;

    friend bool operator==(const PathElement&, const PathElement&) = default;
};

/// A requested path, prefix and path joined.
struct RequestPath {
    std::vector<PathElement> elements;

    friend bool operator==(const RequestPath&, const RequestPath&) = default;
};

inline constexpr std::size_t kMostPathElements = 32;
inline constexpr std::size_t kMostElementBytes = 1024;  ///< of the name and of all keys together

/// A node that exists, or existed: a node of the model, and the key of each list on the way to it.
struct DataPath {
    const SchemaNode* node;  ///< never null
    std::vector<std::string> keys;

    friend bool operator==(const DataPath&, const DataPath&) = default;
    bool isAtOrBelow(const DataPath& ancestor) const;
    /// The node above; the caller must not ask for that of the root.
    DataPath parent() const;
};

/// Orders paths so that all below a node follow it directly.
struct DataPathOrder {
    bool operator()(const DataPath& left, const DataPath& right) const;
};

/// The string form, for people and for `configure`: `/qos/queues/queue[name=q1]/config`.
std::string toText(const RequestPath& path);
std::string toText(const DataPath& path);

/// A path for a message of one line: at most its first 200 bytes, with control characters escaped.
std::string shown(const RequestPath& path);
std::string shown(std::string_view path);

}  // namespace QosAgent::Gnmi
