#include "agent/explain/KeyWatch.h"

#include <utility>

namespace QosAgent {

using Vex::NodeRef;
using Vex::Value;

KeyWatch::KeyWatch(NodeRef entity, std::span<const std::string_view> attributes,
                   const Report& report)
    : KeyWatch(std::move(entity), attributes, report, {}) {
    reportAll();
}

KeyWatch::KeyWatch(NodeRef entity, std::span<const std::string_view> attributes,
                   const Report& report, Keys above)
    : entity_(std::move(entity)),
      attribute_(*Vex::attributeNamed(entity_->typeData(), attributes.front())),
      within_(attributes.subspan(1)),
      report_(report),
      keys_(std::move(above)) {
    keys_.emplace_back();
    record_.dispatch = dispatch;
    record_.owner = this;
    entity_->publisher()->subscriberAdd(record_);
}

KeyWatch::~KeyWatch() {
    entity_->publisher()->subscriberDel(record_);
}

void KeyWatch::dispatch(Orin::Publisher&, Orin::Subscriber& record, Orin::AttributeId attributeId,
                        const void* key) noexcept {
    auto& watch = *static_cast<KeyWatch*>(record.owner);
    if (attributeId != watch.attribute_.id) return;
    const Vex::CollectionOps& members = *watch.attribute_.collection;
    const Value changed = members.keyAt(key);
    watch.handleMember(changed, members.get(watch.entity_.get(), changed));
}

void KeyWatch::reportAll() {
    attribute_.collection->walk(entity_.get(), [this](const Value& key, const Value& member) {
        handleMember(key, member);
    });
}

void KeyWatch::handleMember(const Value& key, const Value& member) {
    const auto* node = std::get_if<NodeRef>(&member);
    const auto held = members_.find(key);
    if (held != members_.end()) {
        if (node != nullptr && *node == held->second->entity_) return;
        held->second->reportAllAbsent();
        members_.erase(held);
    }
    keys_.back() = key;
    const bool isEntered = report_(keys_, !member.isAbsent());
    if (!isEntered || within_.empty() || node == nullptr || !*node) return;
    std::unique_ptr<KeyWatch> watch(new KeyWatch(*node, within_, report_, keys_));
    members_.emplace(key, std::move(watch)).first->second->reportAll();
}

void KeyWatch::reportAllAbsent() {
    for (const auto& [key, watch] : members_)
        watch->reportAllAbsent();
    attribute_.collection->walk(entity_.get(), [this](const Value& key, const Value&) {
        keys_.back() = key;
        report_(keys_, false);
    });
}

}  // namespace QosAgent
