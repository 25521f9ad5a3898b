#pragma once

#include <memory>
#include <optional>

#include "agent/gnmi/Notice.h"
#include "agent/gnmi/Tree.h"

namespace QosAgent::Gnmi {

using TreePtr = std::shared_ptr<const Tree>;

/// The leaves that a query means, as notices: those of one list entry that follow each other share
/// one. Keeps the tree alive; the query must outlive the walk.
class NoticeWalk {
public:
    NoticeWalk(TreePtr tree, const Query& query) : tree_(std::move(tree)), cursor_(*tree_, query) {}

    /// The next notice; nothing at the end.
    std::optional<Notice> next();

private:
    std::optional<NodeUpdate> nextLeaf();

    TreePtr tree_;
    TreeCursor cursor_;
    std::optional<NodeUpdate> ahead_;  ///< the first leaf of the next notice
    bool isStarted_ = false;
};

}  // namespace QosAgent::Gnmi
