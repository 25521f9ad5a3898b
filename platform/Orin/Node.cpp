#include "platform/Orin/Node.h"

namespace Orin {

Node::~Node() = default;

void Node::lastUserGone() {
    if (flag(kHandling)) {
        flagIs(kGone, true);
        return;
    }
    // A destructor may publish, which holds the node meanwhile: letting go of it then must not
    // lead here again.
    refs_.up();
    delete this;
}

Publisher* Node::publisher() const {
    return nullptr;
}

}  // namespace Orin
