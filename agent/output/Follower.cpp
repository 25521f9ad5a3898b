#include "agent/output/Follower.h"

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

/// An entity below the root of the subtree, with those below it. Keeps the entity alive until the
/// change that took it out has been told.
class FollowedEntity {
public:
    FollowedEntity(NodeRef entity, std::string path, Output& output)
        : entity_(std::move(entity)), path_(std::move(path)), output_(output) {
        record_.dispatch = dispatch;
        record_.owner = this;
        entity_->publisher()->subscriberAdd(record_);
    }
    ~FollowedEntity() { entity_->publisher()->subscriberDel(record_); }
    FollowedEntity(const FollowedEntity&) = delete;
    FollowedEntity& operator=(const FollowedEntity&) = delete;

    /// Follows what is below as well; `asChange` tells of it first.
    void followAll(bool asChange);

private:
    static void dispatch(Orin::Publisher&, Orin::Subscriber& record, Orin::AttributeId attributeId,
                         const void* key) noexcept {
        static_cast<FollowedEntity*>(record.owner)->handle(attributeId, key);
    }
    void handle(Orin::AttributeId attributeId, const void* key);
    void followMembers(const AttributeRecord& attribute, bool asChange);
    void followNode(const std::string& path, const Value& value, bool asChange);
    void tell(const AttributeRecord& attribute, const std::string& path, const Value& value);
    void tellUpdate(const AttributeRecord& attribute, const std::string& path, const Value& value);
    void tellDelete(const std::string& path);
    std::string pathOf(const AttributeRecord& attribute) const;
    std::string pathOf(const AttributeRecord& attribute, const Value& key) const;

    NodeRef entity_;
    std::string path_;
    Output& output_;
    Orin::Subscriber record_;
    std::map<std::string, std::unique_ptr<FollowedEntity>> below_;  ///< by path
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

void FollowedEntity::followAll(bool asChange) {
    const auto blank = blankLike(*entity_);
    for (const AttributeRecord& attribute : entity_->typeData().attributes) {
        if (attribute.isHidden) continue;
        if (attribute.collection != nullptr) {
            followMembers(attribute, asChange);
            continue;
        }
        const Value value = attribute.read(entity_.get());
        if (attribute.type->shape == Shape::entity)
            followNode(pathOf(attribute), value, asChange);
        else if (asChange && value != attribute.read(blank.get()))
            tellUpdate(attribute, pathOf(attribute), value);
    }
}

void FollowedEntity::followMembers(const AttributeRecord& attribute, bool asChange) {
    for (const auto& [key, member] : sortedMembers(*entity_, attribute)) {
        if (attribute.type->shape == Shape::entity)
            followNode(pathOf(attribute, key), member, asChange);
        else if (asChange)
            tellUpdate(attribute, pathOf(attribute, key), member);
    }
}

void FollowedEntity::followNode(const std::string& path, const Value& value, bool asChange) {
    const auto* node = std::get_if<NodeRef>(&value);
    if (node == nullptr || !*node) return;
    auto& followed = below_[path];
    followed = std::make_unique<FollowedEntity>(*node, path, output_);
    followed->followAll(asChange);
}

void FollowedEntity::handle(Orin::AttributeId attributeId, const void* key) {
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

void FollowedEntity::tell(const AttributeRecord& attribute, const std::string& path,
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
    followNode(path, value, true);
}

void FollowedEntity::tellUpdate(const AttributeRecord& attribute, const std::string& path,
                                const Value& value) {
    std::string line;
    JsonWriter writer(line);
    writer.beginObject().key("update").text(path).key("value");
    writeValue(writer, *attribute.type, value);
    writer.endObject();
    output_.line(line);
}

void FollowedEntity::tellDelete(const std::string& path) {
    std::string line;
    JsonWriter(line).beginObject().key("delete").text(path).endObject();
    output_.line(line);
}

std::string FollowedEntity::pathOf(const AttributeRecord& attribute) const {
    return path_ + '/' + std::string(attribute.name);
}

std::string FollowedEntity::pathOf(const AttributeRecord& attribute, const Value& key) const {
    std::string path = pathOf(attribute);
    appendKeyStep(path, keyText(*attribute.collection->key, key));
    return path;
}

Follower::Follower(const Subtree& subtree, Output& output)
    : root_(std::make_unique<FollowedEntity>(subtree.root, std::string(subtree.mount->path),
                                             output)) {
    root_->followAll(false);
}

Follower::~Follower() = default;

}  // namespace QosAgent
