#include "agent/gnmi/NoticeWalk.h"

namespace QosAgent::Gnmi {

namespace {

const SchemaNode* listAround(const SchemaNode* node) {
    while (node->depth() > 0 && !node->isList())
        node = node->parent();
    return node;
}

bool areOfOneEntry(const DataPath& left, const DataPath& right) {
    return listAround(left.node) == listAround(right.node) && left.keys == right.keys;
}

}  // namespace

std::optional<NodeUpdate> NoticeWalk::nextLeaf() {
    for (;;) {
        const auto event = cursor_.next();
        if (event == TreeCursor::Event::end) return std::nullopt;
        if (event == TreeCursor::Event::leaf) return NodeUpdate{cursor_.path(), cursor_.json(), 0};
    }
}

std::optional<Notice> NoticeWalk::next() {
    if (!isStarted_) ahead_ = nextLeaf();
    isStarted_ = true;
    if (!ahead_) return std::nullopt;
    Notice notice{tree_->timestamp, {}, {}};
    do {
        notice.updates.push_back(std::move(*ahead_));
        ahead_ = nextLeaf();
    } while (ahead_ && areOfOneEntry(ahead_->path, notice.updates.front().path));
    return notice;
}

}  // namespace QosAgent::Gnmi
