#include "agent/openconfig/Found.h"

namespace QosAgent {

void Found::note(const Vex::TypedNode& holder, const Key& key) {
    Things& things = things_[&holder];
    things.holder = Orin::Ptr<const Vex::TypedNode>(&holder);
    things.keys.insert(key);
}

bool Found::contains(const Vex::TypedNode& holder, const Key& key) const {
    const auto at = things_.find(&holder);
    return at != things_.end() && at->second.keys.contains(key);
}

bool Found::release(const Vex::TypedNode& holder, const Key& key) {
    const auto at = things_.find(&holder);
    if (at == things_.end() || at->second.keys.erase(key) == 0) return false;
    if (at->second.keys.empty()) things_.erase(at);
    return true;
}

}  // namespace QosAgent
