#include "agent/database/Editor.h"

#include <algorithm>
#include <optional>
#include <utility>
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
    report_.begin(*path.subtree);
    patchEntity(*path.subtree->root, {}, Patch(path.steps, value, Patch::Mode::merge));
}

void Editor::set(const Path& path, const JsonValue& value) {
    report_.begin(*path.subtree);
    patchEntity(*path.subtree->root, {}, Patch(path.steps, value, Patch::Mode::set));
}

void Editor::replace(const Path& path, const JsonValue& value) {
    report_.begin(*path.subtree);
    patchEntity(*path.subtree->root, {}, Patch(path.steps, value, Patch::Mode::replace));
    if (report_.isWanted()) reportReplacedPart(path);
}

/// Within a value, what was replaced counts as removed and created, as it does everywhere else.
void Editor::reportReplacedPart(const Path& path) {
    if (!path.form.isMember && !path.form.isNullable) return;
    const auto spot = path.steps.empty() ? std::nullopt : spotOf(path);
    if (!spot || spot->inside.empty()) return;
    Value whole = spot->read();
    const Value* part = partOf(*spot->attribute->type, whole, spot->inside);
    if (part == nullptr) return;
    report_.begin(path, path.steps.size());
    report_.removed();
    report_.valueChanged(*path.form.type, {}, *part);
}

void Editor::remove(const Path& path) {
    const auto spot = spotOf(path);
    if (!spot) return;
    const Value before = spot->read();
    if (before.isAbsent()) return;
    if (spot->inside.empty()) {
        spot->remove();
        report_.begin(path, path.steps.size());
        if (before != spot->read()) report_.removed();
        return;
    }
    Value value = before;
    removePart(*spot->attribute->type, value, spot->inside);
    spot->write(value);
    report_.begin(path, path.steps.size() - spot->inside.size());
    report_.valueChanged(*spot->attribute->type, before, value);
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
    const ChangeReport::Below below(report_, attribute.name);
    if (attribute.collection != nullptr) return patchCollection(node, keys, attribute, patch);
    if (holdsEntities(attribute)) return patchChild(node, attribute, patch);
    if (attribute.write == nullptr) return;  // repeats a key, and agrees with it
    Value before = attribute.read(&node);
    const Value after =
        patched(*attribute.type, takenUnlessReported(before), patch, keys, interner_);
    attribute.write(&node, after);
    report_.valueChanged(*attribute.type, before, after);
}

void Editor::patchCollection(TypedNode& node, const Keys& keys, const AttributeRecord& attribute,
                             const Patch& patch) {
    if (patch.replacesAll()) removeOtherMembers(node, attribute, patch);
    const Vex::Type& keyType = *attribute.collection->key;
    patch.eachMember(keyType, interner_, [&](const Value& key, const Patch& inner) {
        if (progress_) progress_(inner.value().offset());
        const ChangeReport::Below below(report_, keyType, key);
        patchMember(node, keys.under(key), attribute, key, inner);
    });
}

void Editor::patchMember(TypedNode& node, const Keys& keys, const AttributeRecord& attribute,
                         const Value& key, const Patch& patch) {
    const Vex::CollectionOps& members = *attribute.collection;
    if (patch.replacesAll() && !members.del(&node, key).isAbsent()) report_.removed();
    if (holdsEntities(attribute)) return patchEntityMember(node, keys, attribute, key, patch);
    Value before = members.get(&node, key);
    const Value after =
        patched(*attribute.type, takenUnlessReported(before), patch, keys, interner_);
    members.put(&node, key, after);
    report_.valueChanged(*attribute.type, before, after);
}

void Editor::patchEntityMember(TypedNode& node, const Keys& keys, const AttributeRecord& attribute,
                               const Value& key, const Patch& patch) {
    const Vex::CollectionOps& members = *attribute.collection;
    const Value held = members.get(&node, key);
    TypedNode* entity = entityIn(held);
    if (entity != nullptr && !patch.isNull()) return patchEntity(*entity, keys, patch);
    const TypeRecord& type = *attribute.type->record;
    members.put(&node, key, patch.isNull() ? NodeRef() : NodeRef(built(type, keys, patch)));
    if (entity != nullptr)
        report_.emptied(type);
    else if (held.isAbsent() || !patch.isNull())
        report_.created();
}

void Editor::patchChild(TypedNode& node, const AttributeRecord& attribute, const Patch& patch) {
    const Value held = attribute.read(&node);
    TypedNode* child = entityIn(held);
    if (child != nullptr && !patch.isNull() && !patch.replacesAll())
        return patchEntity(*child, {}, patch);
    if (child != nullptr) report_.removed();
    attribute.write(&node, patch.isNull() ? NodeRef() : built(*attribute.type->record, {}, patch));
    if (!patch.isNull()) report_.created();
}

/// The value; copied only where a report will compare with it.
Value Editor::takenUnlessReported(Value& value) const {
    if (report_.isWanted()) return value;
    return std::move(value);
}

NodeRef Editor::built(const TypeRecord& type, const Keys& keys, const Patch& patch) {
    const auto node = constructed(type, keys);
    patchEntity(*node, keys, patch.replacesAll() ? patch.asMerge() : patch);
    return node;
}

void Editor::removeOthers(TypedNode& node, const Patch& patch) {
    for (const AttributeRecord& attribute : node.typeData().attributes) {
        const auto inner = patch.of(attribute);
        const ChangeReport::Below below(report_, attribute.name);
        if (attribute.collection != nullptr) {
            removeOtherMembers(node, attribute, inner);
        } else if (attribute.write != nullptr && !inner) {
            const Value before = attribute.read(&node);
            attribute.write(&node, unset(attribute));
            if (!holdsEntities(attribute))
                report_.valueChanged(*attribute.type, before, attribute.read(&node));
            else if (entityIn(before) != nullptr)
                report_.removed();
        }
    }
}

/// Removes the members that the patch, which is for the whole collection, does not mention.
void Editor::removeOtherMembers(TypedNode& node, const AttributeRecord& attribute,
                                const std::optional<Patch>& patch) {
    const Vex::Type& keyType = *attribute.collection->key;
    std::vector<Value> kept;
    if (patch)
        patch->eachMember(keyType, interner_,
                          [&](const Value& key, const Patch&) { kept.push_back(key); });
    std::sort(kept.begin(), kept.end(), keyBelow);
    for (const Value& key : ascendingKeys(node, attribute)) {
        if (std::binary_search(kept.begin(), kept.end(), key, keyBelow)) continue;
        const ChangeReport::Below below(report_, keyType, key);
        attribute.collection->del(&node, key);
        report_.removed();
    }
}

}  // namespace QosAgent
