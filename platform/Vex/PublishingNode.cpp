#include "platform/Vex/PublishingNode.h"

namespace Vex {

void PublishingNode::publish(Orin::AttributeId id, const void* key) const {
    const Orin::Ptr<const PublishingNode> held(this);
    publisher_.publishChangeRecursive(id, key);
}

}  // namespace Vex
