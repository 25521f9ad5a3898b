#include "platform/Orin/WalkList.h"

namespace Orin {

WalkList::~WalkList() {
    for (Walk* walk = walks_; walk != nullptr; walk = walk->outer_) {
        walk->list_ = nullptr;
        walk->next_ = nullptr;
        walk->stop_ = nullptr;
    }
}

WalkList::Walk* WalkList::outermostOfWalksAt(const Link& link) const noexcept {
    Walk* outermost = nullptr;
    for (Walk* walk = walks_; walk != nullptr; walk = walk->outer_)
        if (walk->current_ == &link) outermost = walk;
    return outermost;
}

// A walk still has to visit the links from `next_` up to, but without, `stop_`.
void WalkList::stopWalksBefore(Link& entered) noexcept {
    for (Walk* walk = walks_; walk != nullptr; walk = walk->outer_) {
        if (walk->stop_ != &ends_) continue;
        walk->stop_ = &entered;
        if (walk->next_ == &ends_) walk->next_ = &entered;
    }
}

void WalkList::stepWalksOff(Link& link) noexcept {
    for (Walk* walk = walks_; walk != nullptr; walk = walk->outer_) {
        if (walk->next_ == &link) walk->next_ = link.next;
        if (walk->stop_ == &link) walk->stop_ = link.next;
    }
}

}  // namespace Orin
