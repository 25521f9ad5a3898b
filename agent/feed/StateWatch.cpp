#include "agent/feed/StateWatch.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "agent/database/Path.h"
#include "agent/database/Printer.h"
#include "agent/database/Scalars.h"
#include "platform/Orin/Publisher.h"

namespace QosAgent {

using Vex::AttributeRecord;
using Vex::NodeRef;
using Vex::Shape;
using Vex::Value;

/// An entity of the subtree, with those below it. Keeps the entity alive until the listener has
/// been notified of its removal.
class WatchedEntity {
public:
    WatchedEntity(NodeRef entity, std::string path, ChangeListener& listener)
        : entity_(std::move(entity)), path_(std::move(path)), listener_(listener) {
        record_.dispatch = dispatch;
        record_.owner = this;
        entity_->publisher()->subscriberAdd(record_);
    }
    ~WatchedEntity() { entity_->publisher()->subscriberDel(record_); }
    WatchedEntity(const WatchedEntity&) = delete;
    WatchedEntity& operator=(const WatchedEntity&) = delete;

    /// Watches everything below as well; `asChange` notifies the listener of it first.
    void watchAll(bool asChange);

private:
    static void dispatch(Orin::Publisher&, Orin::Subscriber& record, Orin::AttributeId attributeId,
                         const void* key) noexcept {
        static_cast<WatchedEntity*>(record.owner)->handle(attributeId, key);
    }
    void handle(Orin::AttributeId attributeId, const void* key);
    void watchMembers(const AttributeRecord& attribute, bool asChange);
    void watchNode(const std::string& path, const Value& value, bool asChange);
    void tell(const AttributeRecord& attribute, const std::string& path, const Value& value);
    void tellUpdate(const AttributeRecord& attribute, const std::string& path, const Value& value);
    void tellDelete(const std::string& path);
    std::string pathOf(const AttributeRecord& attribute) const;
    std::string pathOf(const AttributeRecord& attribute, const Value& key) const;

    NodeRef entity_;
    std::string path_;
    ChangeListener& listener_;
    Orin::Subscriber record_;
    std::map<std::string, std::unique_ptr<WatchedEntity>> below_;  ///< by path
};

namespace {

/// An entity under the same keys that nobody has written to.
Orin::Ptr<Vex::TypedNode> blankLike(const Vex::TypedNode& node) {
    std::vector<Value> keys;
    for (const AttributeRecord& attribute : node.typeData().attributes)
        if (attribute.role == Vex::Role::key || attribute.role == Vex::Role::outerKey)
            keys.push_back(attribute.read(&node));
    return node.typeData().construct(keys);
}

}  // namespace

void WatchedEntity::watchAll(bool asChange) {
    const auto blank = blankLike(*entity_);
    for (const AttributeRecord& attribute : entity_->typeData().attributes) {
        if (attribute.isHidden) continue;
        if (attribute.collection != nullptr) {
            watchMembers(attribute, asChange);
            continue;
        }
        const Value value = attribute.read(entity_.get());
        if (attribute.type->shape == Shape::entity)
            watchNode(pathOf(attribute), value, asChange);
        else if (asChange && value != attribute.read(blank.get()))
            tellUpdate(attribute, pathOf(attribute), value);
    }
}

void WatchedEntity::watchMembers(const AttributeRecord& attribute, bool asChange) {
    for (const auto& [key, member] : sortedMembers(*entity_, attribute)) {
        if (attribute.type->shape == Shape::entity)
            watchNode(pathOf(attribute, key), member, asChange);
        else if (asChange)
            tellUpdate(attribute, pathOf(attribute, key), member);
    }
}

void WatchedEntity::watchNode(const std::string& path, const Value& value, bool asChange) {
    const auto* node = std::get_if<NodeRef>(&value);
    if (node == nullptr || !*node) return;
    auto& watched = below_[path];
    watched = std::make_unique<WatchedEntity>(*node, path, listener_);
    watched->watchAll(asChange);
}

void WatchedEntity::handle(Orin::AttributeId attributeId, const void* key) {
    const auto* attribute = Vex::attributeWithId(entity_->typeData(), attributeId);
    if (attribute == nullptr || attribute->isHidden) return;
    if (attribute->collection == nullptr) {
        tell(*attribute, pathOf(*attribute), attribute->read(entity_.get()));
        return;
    }
    const Value changed = attribute->collection->keyAt(key);
    tell(*attribute, pathOf(*attribute, changed),
         attribute->collection->get(entity_.get(), changed));
}

void WatchedEntity::tell(const AttributeRecord& attribute, const std::string& path,
                         const Value& value) {
    if (attribute.type->shape != Shape::entity) {
        if (value.isAbsent())
            tellDelete(path);
        else
            tellUpdate(attribute, path, value);
        return;
    }
    const auto held = below_.find(path);
    const bool isKnown = held != below_.end();
    if (isKnown && Value(held->second->entity_) == value) return;
    // Another entity in the same place is a deletion first.
    if (isKnown) below_.erase(held);
    if (isKnown || isLeftOut(value)) tellDelete(path);
    watchNode(path, value, true);
}

void WatchedEntity::tellUpdate(const AttributeRecord& attribute, const std::string& path,
                               const Value& value) {
    listener_.changed(Change(path, *attribute.type, value));
}

void WatchedEntity::tellDelete(const std::string& path) {
    listener_.changed(Change(path));
}

std::string WatchedEntity::pathOf(const AttributeRecord& attribute) const {
    return path_ + '/' + std::string(attribute.name);
}

std::string WatchedEntity::pathOf(const AttributeRecord& attribute, const Value& key) const {
    std::string path = pathOf(attribute);
    appendKeyStep(path, keyText(*attribute.collection->key, key));
    return path;
}

StateWatch::StateWatch(const Subtree& subtree, ChangeListener& listener, Beginning beginning)
    : root_(std::make_unique<WatchedEntity>(subtree.root, std::string(subtree.mount->path),
                                            listener)) {
    root_->watchAll(beginning == Beginning::notified);
}

StateWatch::~StateWatch() = default;

}  // namespace QosAgent
