#include "platform/Orin/Node.h"

namespace Orin {

Node::~Node() = default;

void Node::lastUserGone() {
    if (flag(kHandling)) {
        flagIs(kGone, true);
        return;
    }
    // A destructor may publish, which adds and releases a reference to the node; that release must
    // not call this function again.
    refs_.up();
    delete this;
}

Publisher* Node::publisher() const {
    return nullptr;
}

}  // namespace Orin
