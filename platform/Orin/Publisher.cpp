#include "platform/Orin/Publisher.h"

namespace Orin {

Publisher::~Publisher() {
    while (!subscribers_.empty())
        subscribers_.remove(subscribers_.front());
}

void Publisher::publishChangeRecursive(AttributeId attributeId, const void* key) {
    WalkList::Walk walk(subscribers_);
    while (Link* link = walk.step()) {
        auto& record = static_cast<Subscriber&>(*link);
        record.dispatch(*this, record, attributeId, key);
    }
}

}  // namespace Orin
