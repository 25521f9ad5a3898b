#include "platform/Orin/Node.h"

namespace Orin {

Node::~Node() = default;

void Node::lastUserGone() {
    delete this;
}

Publisher* Node::publisher() const {
    return nullptr;
}

}  // namespace Orin
