#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "agent/feed/ChangeSet.h"

namespace QosAgent {

/// Collects published changes one by one and makes their outcome of them.
class ChangeCollector {
public:
    /// The value was published under the path, which is below the root of the state tree.
    void updated(const std::string& path, StateValuePtr value);
    /// What was at the path is gone, with all below it.
    void removed(const std::string& path);
    /// Adds the outcome of a later change set. Its steps are lost.
    void merge(const ChangeSet& changes);
    bool isEmpty() const { return updated_.empty() && removed_.empty(); }

    /// The outcome, given the state before the first and after the last change. Begins anew.
    ChangeSetPtr take(const Snapshot& before, const Snapshot& after);

private:
    bool isCovered(const std::string& path) const;
    void erase(const std::string& path);

    std::map<std::string, std::uint64_t> updated_;
    std::set<std::string> removed_;
    std::vector<ChangeSet::Step> steps_;
};

}  // namespace QosAgent
