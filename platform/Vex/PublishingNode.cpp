#include "platform/Vex/PublishingNode.h"

namespace Vex {

void PublishingNode::publish(Orin::AttributeId id, const void* key) const {
    const auto held = Orin::Ptr<const PublishingNode>::sharing(this);
    publisher_.publishChangeRecursive(id, key);
}

}  // namespace Vex
