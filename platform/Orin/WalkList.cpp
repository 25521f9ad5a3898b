#include "platform/Orin/WalkList.h"

namespace Orin {

WalkList::~WalkList() {
    for (Walk* walk = walks_; walk != nullptr; walk = walk->outer_) {
        walk->list_ = nullptr;
        walk->next_ = nullptr;
    }
}

WalkList::Walk* WalkList::outermostWalkAt(const Link& link) const noexcept {
    Walk* outermost = nullptr;
    for (Walk* walk = walks_; walk != nullptr; walk = walk->outer_)
        if (walk->current_ == &link) outermost = walk;
    return outermost;
}

// Links that enter stand behind `last_`, so what lies from `next_` to `last_` is what the walk
// still has to visit.
void WalkList::stepWalksOff(Link& link) noexcept {
    for (Walk* walk = walks_; walk != nullptr; walk = walk->outer_) {
        if (walk->next_ == nullptr) continue;
        if (walk->next_ == &link)
            walk->next_ = &link == walk->last_ ? nullptr : link.next;
        else if (walk->last_ == &link)
            walk->last_ = link.prev;
    }
}

}  // namespace Orin
