#include "agent/feed/ChangeCollector.h"

#include <utility>

namespace QosAgent {

void ChangeCollector::removed(const std::string& path) {
    removed_.insert(path);
    updated_.erase(path);
    const std::string below = path + '/';
    const auto first = updated_.lower_bound(below);
    auto last = first;
    while (last != updated_.end() && last->first.starts_with(below))
        ++last;
    updated_.erase(first, last);
}

void ChangeCollector::add(const ChangeSet& changes) {
    for (const std::string& path : changes.deletes)
        removed(path);
    for (const ChangeSet::Update& update : changes.updates)
        updated(update.path, update.values);
}

/// Whether a node above the path was removed, too.
bool ChangeCollector::isCovered(const std::string& path) const {
    for (std::size_t slash = path.rfind('/'); slash != std::string::npos && slash != 0;
         slash = path.rfind('/', slash - 1))
        if (removed_.contains(path.substr(0, slash))) return true;
    return false;
}

ChangeSetPtr ChangeCollector::take(const Snapshot& before, const Snapshot& after) {
    auto changes = std::make_shared<ChangeSet>();
    changes->before = before;
    changes->after = after;
    for (const std::string& path : removed_)
        if (!isCovered(path) && before.state.holds(path)) changes->deletes.push_back(path);
    for (const auto& [path, values] : updated_)
        if (StateValuePtr value = after.state.find(path))
            changes->updates.push_back({path, std::move(value), values});
    updated_.clear();
    removed_.clear();
    return changes;
}

}  // namespace QosAgent
