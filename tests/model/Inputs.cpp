#include "tests/model/Inputs.h"

#include <algorithm>

#include "tests/model/Reach.h"

namespace Model {
namespace {

Ref patched(const Type& type, const Ref& before, const Json& value, const std::string& key);

void patchMap(Slot& slot, const Attribute& attribute, const Json& value) {
    if (value.replaces) slot.members.clear();
    for (const auto& [key, member] : value.members) {
        const auto at = placeOf(slot, attribute, key);
        if (at != slot.members.end() && at->key == key)
            at->thing = patched(*attribute.type, at->thing, member, key);
        else
            slot.members.insert(at, {key, patched(*attribute.type, nullptr, member, key)});
    }
}

/// The value that was there, with what `value` says of it.
Ref patched(const Type& type, const Ref& before, const Json& value, const std::string& key) {
    if (value.isNull()) return nullptr;
    const Ref after = before && !value.replaces ? copied(before) : defaultThing(type, key);
    if (type.shape == Type::Shape::plain) {
        after->text = value.kind == Json::Kind::text ? value.text : value.written();
        return after;
    }
    for (const Attribute& attribute : type.attributes) {
        const Json* inner = value.find(attribute.name);
        if (inner == nullptr || attribute.isKey) continue;
        Slot& slot = after->slot(attribute.name);
        if (attribute.keyed == Keyed::no)
            slot.thing = patched(*attribute.type, slot.thing, *inner, key);
        else
            patchMap(slot, attribute, *inner);
    }
    return after;
}

/// The key that a value repeats; empty if it repeats none.
std::string keyIn(const Ref& value) {
    if (!value) return {};
    for (const Attribute& attribute : value->type.attributes)
        if (attribute.isKey) return value->textOf(attribute.name);
    return {};
}

/// What is inside a value; null if it is not there.
Thing* partOf(Thing* value, const std::vector<std::string>& inside, std::size_t steps) {
    for (std::size_t i = 0; i < steps && value != nullptr; ++i) {
        const Attribute& attribute = value->type.attribute(inside[i]);
        if (attribute.keyed == Keyed::no)
            value = value->one(inside[i]).get();
        else if (++i < steps)
            value = value->member(attribute.name, inside[i]).get();
    }
    return value;
}

/// Of a path inside a value: how many steps lead to what holds its end.
std::size_t holderSteps(const Thing& value, const std::vector<std::string>& inside) {
    const Type* type = &value.type;
    std::size_t i = 0;
    for (;;) {
        const Attribute& attribute = type->attribute(inside[i]);
        const std::size_t next = i + (attribute.keyed == Keyed::no ? 1 : 2);
        if (next >= inside.size()) return i;
        type = attribute.type;
        i = next;
    }
}

Ref without(const Ref& value, const std::vector<std::string>& inside) {
    const Ref after = copied(value);
    const std::size_t steps = holderSteps(*value, inside);
    Thing* holder = partOf(after.get(), inside, steps);
    if (holder == nullptr) return after;
    Slot& slot = holder->slot(inside[steps]);
    slot.thing = nullptr;
    std::erase_if(slot.members, [&](const Member& m) { return m.key == inside.back(); });
    return after;
}

/// The same change of the root: the value in a nest of objects with one member each.
Json nested(const Change& change) {
    Json value = change.value;
    value.replaces = change.verb == Change::Verb::replace;
    for (std::size_t i = change.path.size() - 1; i > 0; --i) {
        Json outer = Json::object();
        outer.add(change.path[i], std::move(value));
        value = std::move(outer);
    }
    return value;
}

}  // namespace

Inputs::Inputs() {
    for (const Mount& mount : kInputs)
        roots_.emplace_back(mount.path, defaultThing(*mount.type, ""));
}

const Ref& Inputs::root(const Mount& mount) const {
    return std::find_if(roots_.begin(), roots_.end(),
                        [&](const auto& root) { return root.first == mount.path; })
        ->second;
}

Thing* Inputs::rootAt(std::string_view path) const {
    for (const auto& [mount, root] : roots_)
        if (mount == path) return root.get();
    return nullptr;
}

Ref Inputs::built(const Type& type, const std::string& key, const Json& value) {
    const Ref entity = defaultThing(type, key);
    Inputs nobody;
    nobody.mergeEntity(*entity, value);
    return entity;
}

void Inputs::merge(std::string_view mount, const Json& value) {
    mergeEntity(*rootAt(mount), value);
}

Json Inputs::document() const {
    Json document = Json::object();
    for (const auto& [mount, root] : roots_)
        document.add(std::string(mount), written(*root));
    return document;
}

void Inputs::apply(const Change& change) {
    if (change.hasValue()) return mergeEntity(*rootAt(change.path[0]), nested(change));
    const Spot spot = spotOf(change);
    if (spot.entity == nullptr) return rule<"database: nothing below what is absent">();
    if (change.verb == Change::Verb::remove)
        remove(spot);
    else
        touch(spot);
}

Inputs::Spot Inputs::spotOf(const Change& change) const {
    Thing* entity = rootAt(change.path[0]);
    std::size_t i = 1;
    while (entity != nullptr) {
        Spot spot{entity, &entity->type.attribute(change.path[i++]), "", {}};
        const bool isKeyed = spot.attribute->keyed != Keyed::no;
        if (isKeyed) spot.key = change.path[i++];
        if (!spot.attribute->type->isEntity() || i == change.path.size()) {
            spot.inside.assign(change.path.begin() + static_cast<std::ptrdiff_t>(i),
                               change.path.end());
            return spot;
        }
        const auto name = spot.attribute->name;
        entity = (isKeyed ? entity->member(name, spot.key) : entity->one(name)).get();
    }
    return {};
}

void Inputs::remove(const Spot& spot) {
    const bool isKeyed = spot.attribute->keyed != Keyed::no;
    if (spot.inside.empty()) {
        if (isKeyed) return memberDel(*spot.entity, *spot.attribute, spot.key);
        return oneIs(*spot.entity, *spot.attribute, nullptr);
    }
    const auto name = spot.attribute->name;
    const Ref value = isKeyed ? spot.entity->member(name, spot.key) : spot.entity->one(name);
    if (!value) return rule<"database: nothing to remove in what is absent">();
    if (isKeyed)
        memberIs(*spot.entity, *spot.attribute, spot.key, without(value, spot.inside));
    else
        oneIs(*spot.entity, *spot.attribute, without(value, spot.inside));
}

void Inputs::touch(const Spot& spot) const {
    const auto name = spot.attribute->name;
    if (!spot.inside.empty()) {
        const bool isKeyed = spot.attribute->keyed != Keyed::no;
        const Ref value = isKeyed ? spot.entity->member(name, spot.key) : spot.entity->one(name);
        if (!value || !partOf(value.get(), spot.inside, holderSteps(*value, spot.inside)))
            return rule<"database: nothing to touch in what is absent">();
    }
    rule<"database: a touch publishes">();
    publish(*spot.entity, *spot.attribute, spot.key);
}

void Inputs::mergeEntity(Thing& entity, const Json& value) {
    if (value.replaces) removeOthers(entity, value);
    for (const bool isLast : {false, true})
        for (const Attribute& attribute : entity.type.attributes) {
            const Json* inner = value.find(attribute.name);
            if (attribute.isLast != isLast || inner == nullptr) continue;
            Json merged = *inner;
            merged.replaces = merged.replaces || value.replaces;
            if (attribute.keyed == Keyed::no)
                mergeOne(entity, attribute, merged);
            else
                mergeCollection(entity, attribute, merged);
        }
}

void Inputs::mergeCollection(Thing& entity, const Attribute& attribute, const Json& value) {
    if (value.replaces) removeOtherMembers(entity, attribute, &value);
    for (const auto& [key, inner] : value.members) {
        Json member = inner;
        member.replaces = member.replaces || value.replaces;
        mergeMember(entity, attribute, key, member);
    }
}

void Inputs::mergeMember(Thing& entity, const Attribute& attribute, const std::string& key,
                         const Json& value) {
    if (value.replaces) memberDel(entity, attribute, key);
    const Ref held = entity.member(attribute.name, key);
    if (!attribute.type->isEntity())
        return memberIs(entity, attribute, key, patched(*attribute.type, held, value, key));
    if (value.isNull()) return memberIs(entity, attribute, key, nullptr);
    if (held) return mergeEntity(*held, value);
    memberIs(entity, attribute, key, built(*attribute.type, key, value));
}

void Inputs::mergeOne(Thing& entity, const Attribute& attribute, const Json& value) {
    const Ref held = entity.one(attribute.name);
    if (!attribute.type->isEntity())
        return oneIs(entity, attribute, patched(*attribute.type, held, value, keyIn(held)));
    if (value.isNull()) return oneIs(entity, attribute, nullptr);
    if (held && !value.replaces) return mergeEntity(*held, value);
    oneIs(entity, attribute, built(*attribute.type, "", value));
}

void Inputs::removeOthers(Thing& entity, const Json& value) {
    for (const Attribute& attribute : entity.type.attributes) {
        const Json* inner = value.find(attribute.name);
        if (attribute.keyed != Keyed::no)
            removeOtherMembers(entity, attribute, inner);
        else if (inner == nullptr && attribute.isOptional)
            oneIs(entity, attribute, nullptr);
    }
}

void Inputs::removeOtherMembers(Thing& entity, const Attribute& attribute, const Json* value) {
    std::vector<std::string> others;
    for (const Member& member : entity.members(attribute.name))
        if (value == nullptr || value->find(member.key) == nullptr) others.push_back(member.key);
    // Enumerations are the only keys that are numbers and not kept in their order.
    const bool areNumbers = attribute.name.ends_with("TypeStatus") ||
                            attribute.name == "aclTypeConfig" || attribute.name == "match" ||
                            attribute.keyed == Keyed::byNumber || attribute.name.ends_with("ById");
    std::sort(others.begin(), others.end(), [&](const std::string& a, const std::string& b) {
        return areNumbers ? numberOf(a) < numberOf(b) : a < b;
    });
    for (const std::string& key : others)
        memberDel(entity, attribute, key);
}

void Inputs::oneIs(Thing& entity, const Attribute& attribute, const Ref& thing) {
    Ref& held = entity.slot(attribute.name).thing;
    if (attribute.type->isEntity() ? held == thing : isSame(held, thing)) return;
    // Who reacts to the change may be the last to hold what was there.
    const Ref old = std::exchange(held, thing);
    publish(entity, attribute, "");
}

void Inputs::memberIs(Thing& entity, const Attribute& attribute, const std::string& key,
                      const Ref& thing) {
    Slot& slot = entity.slot(attribute.name);
    const auto at = placeOf(slot, attribute, key);
    const bool isHeld = at != slot.members.end() && at->key == key;
    if (isHeld && (attribute.type->isEntity() ? at->thing == thing : isSame(at->thing, thing)))
        return rule<"database: an equal value is silent">();
    if (isHeld)
        at->thing = thing;
    else
        slot.members.insert(at, {key, thing});
    publish(entity, attribute, key);
}

void Inputs::memberDel(Thing& entity, const Attribute& attribute, const std::string& key) {
    Slot& slot = entity.slot(attribute.name);
    const auto at = placeOf(slot, attribute, key);
    if (at == slot.members.end() || at->key != key) return;
    const Ref old = at->thing;
    slot.members.erase(at);
    publish(entity, attribute, key);
}

void Inputs::publish(const Thing& entity, const Attribute& attribute,
                     const std::string& key) const {
    if (listener_) listener_(entity, attribute.name, key);
}

}  // namespace Model
