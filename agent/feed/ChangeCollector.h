#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>

#include "agent/feed/ChangeSet.h"

namespace QosAgent {

/// Collects published changes one by one and makes their outcome of them.
class ChangeCollector {
public:
    /// `values` were published under the path, which is below the root of the state tree.
    void updated(std::string path, std::uint64_t values = 1) {
        updated_[std::move(path)] += values;
    }
    /// What was at the path is gone, with all below it.
    void removed(const std::string& path);
    /// What a later change set tells.
    void add(const ChangeSet& changes);
    bool isEmpty() const { return updated_.empty() && removed_.empty(); }

    /// The outcome, given the state before the first and after the last change. Begins anew.
    ChangeSetPtr take(const Snapshot& before, const Snapshot& after);

private:
    bool isCovered(const std::string& path) const;

    std::map<std::string, std::uint64_t> updated_;
    std::set<std::string> removed_;
};

}  // namespace QosAgent
