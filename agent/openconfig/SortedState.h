#pragma once

#include <algorithm>
#include <vector>

namespace QosAgent {

/// The members of a keyed collection of the state tree, in ascending key order. Lives until the
/// collection changes.
template <class Map>
std::vector<const typename Map::Member*> sortedByKey(const Map& map) {
    std::vector<const typename Map::Member*> members;
    members.reserve(map.size());
    for (const auto& member : map)
        members.push_back(&member);
    std::sort(members.begin(), members.end(),
              [](const auto* left, const auto* right) { return left->key < right->key; });
    return members;
}

}  // namespace QosAgent
