#include "agent/feed/ChangeCollector.h"

#include <utility>

namespace QosAgent {

namespace {

std::vector<ChangeSet::Step> outcome(const ChangeSet& changes) {
    std::vector<ChangeSet::Step> steps;
    for (const std::string& path : changes.deletes)
        steps.push_back({path, nullptr});
    for (const ChangeSet::Update& update : changes.updates)
        steps.push_back({update.path, update.value});
    return steps;
}

}  // namespace

void ChangeCollector::updated(const std::string& path, StateValuePtr value) {
    ++updated_[path];
    steps_.push_back({path, std::move(value)});
}

void ChangeCollector::removed(const std::string& path) {
    erase(path);
    steps_.push_back({path, nullptr});
}

void ChangeCollector::erase(const std::string& path) {
    removed_.insert(path);
    updated_.erase(path);
    const std::string below = path + '/';
    const auto first = updated_.lower_bound(below);
    auto last = first;
    while (last != updated_.end() && last->first.starts_with(below))
        ++last;
    updated_.erase(first, last);
}

void ChangeCollector::merge(const ChangeSet& changes) {
    for (const std::string& path : changes.deletes)
        erase(path);
    for (const ChangeSet::Update& update : changes.updates)
        updated_[update.path] += update.values;
    steps_.clear();
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
    const bool isMerged = steps_.empty();
    changes->steps = isMerged ? outcome(*changes) : std::exchange(steps_, {});
    updated_.clear();
    removed_.clear();
    return changes;
}

}  // namespace QosAgent
