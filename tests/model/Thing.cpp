#include "tests/model/Thing.h"

#include <algorithm>

namespace Model {

Slot& Thing::slot(std::string_view name) {
    const auto index = &type.attribute(name) - type.attributes.data();
    return slots[static_cast<std::size_t>(index)];
}

const Slot& Thing::slot(std::string_view name) const {
    return const_cast<Thing*>(this)->slot(name);
}

Ref Thing::member(std::string_view name, std::string_view key) const {
    for (const Member& each : members(name))
        if (each.key == key) return each.thing;
    return nullptr;
}

Ref defaultThing(const Type& type, const std::string& key) {
    auto thing = std::make_shared<Thing>(Thing{type, std::string(type.zero), {}});
    thing->slots.resize(type.attributes.size());
    for (std::size_t i = 0; i < type.attributes.size(); ++i) {
        const Attribute& attribute = type.attributes[i];
        if (attribute.keyed != Keyed::no || attribute.isOptional) continue;
        thing->slots[i].thing = defaultThing(*attribute.type, key);
        if (attribute.isKey || attribute.copiesKey) thing->slots[i].thing->text = key;
    }
    return thing;
}

Ref copied(const Ref& value) {
    if (!value) return nullptr;
    auto copy = std::make_shared<Thing>(*value);
    for (Slot& slot : copy->slots) {
        slot.thing = copied(slot.thing);
        for (Member& member : slot.members)
            member.thing = copied(member.thing);
    }
    return copy;
}

bool isSame(const Ref& left, const Ref& right) {
    if (!left || !right) return left == right;
    const auto isSameMember = [](const Member& a, const Member& b) {
        return a.key == b.key && isSame(a.thing, b.thing);
    };
    const auto isSameSlot = [&](const Slot& a, const Slot& b) {
        return isSame(a.thing, b.thing) &&
               std::equal(a.members.begin(), a.members.end(), b.members.begin(), b.members.end(),
                          isSameMember);
    };
    return left->text == right->text &&
           std::equal(left->slots.begin(), left->slots.end(), right->slots.begin(), isSameSlot);
}

Json written(const Thing& thing) {
    if (thing.type.shape == Type::Shape::plain)
        return thing.type.zero.empty() || thing.type.zero == "IPV4" ? Json::of(thing.text)
                                                                    : Json::plain(thing.text);
    Json object = Json::object();
    for (std::size_t i = 0; i < thing.slots.size(); ++i) {
        const Attribute& attribute = thing.type.attributes[i];
        const auto value = [](const Ref& ref) { return ref ? written(*ref) : Json::null(); };
        if (attribute.keyed == Keyed::no) {
            object.add(std::string(attribute.name), value(thing.slots[i].thing));
            continue;
        }
        Json& members = object.add(std::string(attribute.name), Json::object());
        for (const Member& member : thing.slots[i].members)
            members.add(member.key, value(member.thing));
    }
    return object;
}

std::vector<Member>::iterator placeOf(Slot& slot, const Attribute& attribute,
                                      std::string_view key) {
    const auto isAt = [&](const Member& member) {
        if (member.key == key) return true;
        if (attribute.keyed == Keyed::byName) return member.key > key;
        return attribute.keyed == Keyed::byNumber && numberOf(member.key) > numberOf(key);
    };
    return std::find_if(slot.members.begin(), slot.members.end(), isAt);
}

}  // namespace Model
