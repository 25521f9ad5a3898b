#include "platform/Orin/Publisher.h"

namespace Orin {

Publisher::~Publisher() {
    while (!subscribers_.empty())
        subscribers_.remove(subscribers_.front());
}

void Publisher::callEach(AttributeId attributeId, const void* key) {
    WalkList::Walk walk(subscribers_);
    while (Link* link = walk.step())
        call(*link, attributeId, key);
}

}  // namespace Orin
