#pragma once

#include <set>
#include <vector>

#include "agent/feed/ChangeSet.h"
#include "agent/gnmi/Notice.h"
#include "agent/gnmi/Tree.h"

namespace QosAgent::Gnmi {

using PathSet = std::set<DataPath, DataPathOrder>;

/// Nodes at or below which something may have changed.
struct Touched {
    PathSet entries;   ///< list entries (or the root): their own leaves, not those of inner lists
    PathSet subtrees;  ///< everything at or below
};

/// The classifiers and terms whose state a change set changed.
void addTouched(Touched& touched, const ChangeSet& changes);

/// What changed between two trees, looking only at what was touched: one notice for each list
/// entry that stays, and one for each highest node below which nothing is left.
std::vector<Notice> difference(const Tree& before, const Tree& after, const Touched& touched);

/// The part of a notice that a query means. A delete is kept if something at or below it was meant
/// in `before`.
Notice filtered(const Notice& notice, const Query& query, const Tree& before);

}  // namespace QosAgent::Gnmi
