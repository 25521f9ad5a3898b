#include "agent/database/Editor.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "agent/database/Scalars.h"
#include "agent/database/Values.h"

namespace QosAgent {
namespace {

using Vex::AttributeRecord;
using Vex::NodeRef;
using Vex::Role;
using Vex::Shape;
using Vex::TypedNode;
using Vex::TypeRecord;
using Vex::Value;

bool holdsEntities(const AttributeRecord& attribute) {
    return attribute.type->shape == Shape::entity;
}

/// The entity that a value refers to; null where there is none. Entities are reached through
/// others that own them, so they may be changed.
TypedNode* entityIn(const Value& value) {
    if (value.isAbsent()) return nullptr;
    return const_cast<TypedNode*>(value.as<NodeRef>().get());
}

/// Calls `visit` for each attribute: those that announce the others come last.
template <class Visit>
void eachInUpdateOrder(const TypeRecord& type, Visit visit) {
    for (const AttributeRecord& attribute : type.attributes)
        if (!attribute.announces) visit(attribute);
    for (const AttributeRecord& attribute : type.attributes)
        if (attribute.announces) visit(attribute);
}

std::vector<Value> constructorArguments(const TypeRecord& type, const Keys& keys) {
    std::vector<Value> arguments;
    for (const AttributeRecord& attribute : type.attributes)
        if (attribute.role == Role::key || attribute.role == Role::outerKey)
            arguments.push_back(keys.repeatedBy(attribute.role));
    return arguments;
}

/// A new entity, its records with the keys that they repeat.
Orin::Ptr<TypedNode> constructed(const TypeRecord& type, const Keys& keys) {
    const auto node = type.construct(constructorArguments(type, keys));
    for (const AttributeRecord& attribute : type.attributes)
        if (attribute.write != nullptr && attribute.type->shape == Shape::record)
            attribute.write(node.get(), defaultValue(*attribute.type, attribute.role, keys));
    return node;
}

std::vector<Value> ascendingKeys(const TypedNode& node, const AttributeRecord& attribute) {
    std::vector<Value> keys;
    attribute.collection->walk(&node, [&](const Value& key, const Value&) { keys.push_back(key); });
    std::sort(keys.begin(), keys.end(), keyBelow);
    return keys;
}

/// Removes the members that the patch, which is for the whole collection, does not mention.
void removeOtherMembers(TypedNode& node, const AttributeRecord& attribute,
                        const std::optional<Patch>& patch, Interner& interner) {
    std::vector<Value> kept;
    if (patch)
        patch->eachMember(*attribute.collection->key, interner,
                          [&](const Value& key, const Patch&) { kept.push_back(key); });
    std::sort(kept.begin(), kept.end(), keyBelow);
    for (const Value& key : ascendingKeys(node, attribute))
        if (!std::binary_search(kept.begin(), kept.end(), key, keyBelow))
            attribute.collection->del(&node, key);
}

Value unset(const AttributeRecord& attribute) {
    return holdsEntities(attribute) ? Value(NodeRef())
                                    : defaultValue(*attribute.type, attribute.role, {});
}

/// Where a path ends: at an attribute of an entity that exists, or inside the value there.
struct Spot {
    TypedNode* node;
    const AttributeRecord* attribute;
    const Value* key;              ///< null where the attribute is no collection
    std::span<const Step> inside;  ///< the way on, inside the value

    Value read() const {
        return key == nullptr ? attribute->read(node) : attribute->collection->get(node, *key);
    }
    void write(const Value& value) const {
        if (key == nullptr)
            attribute->write(node, value);
        else
            attribute->collection->put(node, *key, value);
    }
    void remove() const {
        if (key == nullptr)
            attribute->write(node, unset(*attribute));
        else
            attribute->collection->del(node, *key);
    }
    void touch() const {
        if (key == nullptr)
            attribute->touch(node);
        else
            attribute->collection->touch(node, *key);
    }
};

/// The spot of a path that leads to no root and to no whole collection of an entity; nothing when
/// an entity on the way does not exist.
std::optional<Spot> spotOf(const Path& path) {
    TypedNode* node = path.subtree->root.get();
    std::span<const Step> steps = path.steps;
    for (;;) {
        Spot spot{node, steps[0].attribute, nullptr, steps.subspan(1)};
        if (spot.attribute->collection != nullptr) {
            spot.key = &spot.inside[0].key;
            spot.inside = spot.inside.subspan(1);
        }
        if (!holdsEntities(*spot.attribute) || spot.inside.empty()) return spot;
        node = entityIn(spot.read());
        if (node == nullptr) return {};
        steps = spot.inside;
    }
}

}  // namespace

void Editor::update(const Path& path, const JsonValue& value) {
    patchEntity(*path.subtree->root, {}, Patch(path.steps, value, Patch::Mode::merge));
}

void Editor::replace(const Path& path, const JsonValue& value) {
    patchEntity(*path.subtree->root, {}, Patch(path.steps, value, Patch::Mode::replace));
}

void Editor::remove(const Path& path) {
    const auto spot = spotOf(path);
    if (!spot) return;
    if (spot->inside.empty()) return spot->remove();
    Value value = spot->read();
    if (value.isAbsent()) return;
    removePart(*spot->attribute->type, value, spot->inside);
    spot->write(value);
}

void Editor::touch(const Path& path) {
    const auto spot = spotOf(path);
    if (!spot) return;
    if (!spot->inside.empty()) {
        Value value = spot->read();
        const auto holder = spot->inside.first(spot->inside.size() - 1);
        if (partOf(*spot->attribute->type, value, holder) == nullptr) return;
    }
    spot->touch();
}

void Editor::patchEntity(TypedNode& node, const Keys& keys, const Patch& patch) {
    if (patch.replacesAll()) removeOthers(node, patch);
    eachInUpdateOrder(node.typeData(), [&](const AttributeRecord& attribute) {
        if (const auto inner = patch.of(attribute)) patchAttribute(node, keys, attribute, *inner);
    });
}

void Editor::patchAttribute(TypedNode& node, const Keys& keys, const AttributeRecord& attribute,
                            const Patch& patch) {
    if (attribute.collection != nullptr) return patchCollection(node, keys, attribute, patch);
    if (holdsEntities(attribute)) return patchChild(node, attribute, patch);
    if (attribute.write == nullptr) return;  // repeats a key, and agrees with it
    attribute.write(&node, patched(*attribute.type, attribute.read(&node), patch, keys, interner_));
}

void Editor::patchCollection(TypedNode& node, const Keys& keys, const AttributeRecord& attribute,
                             const Patch& patch) {
    if (patch.replacesAll()) removeOtherMembers(node, attribute, patch, interner_);
    patch.eachMember(*attribute.collection->key, interner_,
                     [&](const Value& key, const Patch& inner) {
                         if (progress_) progress_(inner.value().offset());
                         patchMember(node, keys.under(key), attribute, key, inner);
                     });
}

void Editor::patchMember(TypedNode& node, const Keys& keys, const AttributeRecord& attribute,
                         const Value& key, const Patch& patch) {
    const Vex::CollectionOps& members = *attribute.collection;
    if (patch.replacesAll()) members.del(&node, key);
    if (holdsEntities(attribute)) return patchEntityMember(node, keys, attribute, key, patch);
    members.put(&node, key,
                patched(*attribute.type, members.get(&node, key), patch, keys, interner_));
}

void Editor::patchEntityMember(TypedNode& node, const Keys& keys, const AttributeRecord& attribute,
                               const Value& key, const Patch& patch) {
    const Vex::CollectionOps& members = *attribute.collection;
    if (patch.isNull()) {
        members.put(&node, key, NodeRef());
        return;
    }
    const Value held = members.get(&node, key);
    if (TypedNode* entity = entityIn(held))
        patchEntity(*entity, keys, patch);
    else
        members.put(&node, key, built(*attribute.type->record, keys, patch));
}

void Editor::patchChild(TypedNode& node, const AttributeRecord& attribute, const Patch& patch) {
    if (patch.isNull()) {
        attribute.write(&node, NodeRef());
        return;
    }
    const Value held = attribute.read(&node);
    TypedNode* child = entityIn(held);
    if (child != nullptr && !patch.replacesAll())
        patchEntity(*child, {}, patch);
    else
        attribute.write(&node, built(*attribute.type->record, {}, patch));
}

NodeRef Editor::built(const TypeRecord& type, const Keys& keys, const Patch& patch) {
    const auto node = constructed(type, keys);
    patchEntity(*node, keys, patch.replacesAll() ? patch.asMerge() : patch);
    return node;
}

void Editor::removeOthers(TypedNode& node, const Patch& patch) {
    for (const AttributeRecord& attribute : node.typeData().attributes) {
        const auto inner = patch.of(attribute);
        if (attribute.collection != nullptr)
            removeOtherMembers(node, attribute, inner, interner_);
        else if (attribute.write != nullptr && !inner)
            attribute.write(&node, unset(attribute));
    }
}

}  // namespace QosAgent
