#include "agent/database/InputChanges.h"

#include <algorithm>

namespace QosAgent {

void InputChanges::listenerAdd(Listener& listener) {
    if (std::find(listeners_.begin(), listeners_.end(), &listener) == listeners_.end())
        listeners_.push_back(&listener);
}

void InputChanges::listenerDel(Listener& listener) {
    std::erase(listeners_, &listener);
}

}  // namespace QosAgent
