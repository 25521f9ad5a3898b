#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "agent/feed/Snapshot.h"

namespace QosAgent {

/// What one applied request, or several one after the other, changed in the published state: the
/// outcome, and how it came about. Immutable plain data that any thread may read.
struct ChangeSet {
    struct Update {
        std::string path;
        StateValuePtr value;
        /// How many values were published under the path, this last one included. At least 1.
        std::uint64_t values;
    };

    Snapshot before;
    Snapshot after;
    /// Paths that went, in byte order: the highest node only, and only where `before` held
    /// something. They precede the updates: what was removed and created again stands in both.
    std::vector<std::string> deletes;
    /// In byte order of their paths.
    std::vector<Update> updates;

    /// One published change.
    struct Step {
        std::string path;
        StateValuePtr value;  ///< null: removed, with all below it
    };
    /// Each published change in the order of publication. Of merged change sets only the outcome is
    /// left: the deletes, then the updates.
    std::vector<Step> steps;

    bool isEmpty() const {
        return deletes.empty() && updates.empty() && steps.empty() &&
               before.configuration == after.configuration &&
               before.policyMaps.isSame(after.policyMaps);
    }
};

using ChangeSetPtr = std::shared_ptr<const ChangeSet>;

}  // namespace QosAgent
