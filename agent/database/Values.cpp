#include "agent/database/Values.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "agent/database/Scalars.h"

namespace QosAgent {
namespace {

using Vex::AttributeRecord;
using Vex::ListValue;
using Vex::MapMember;
using Vex::MapValue;
using Vex::RecordValue;
using Vex::Shape;
using Vex::Type;
using Vex::Value;

bool isKeyBelow(const MapMember& left, const MapMember& right) {
    return keyBelow(left.key, right.key);
}

RecordValue defaultRecord(const Vex::TypeRecord& record, const Keys& keys) {
    RecordValue value;
    value.fields.reserve(record.attributes.size());
    for (const AttributeRecord& field : record.attributes)
        value.fields.push_back(defaultValue(*field.type, field.role, keys));
    return value;
}

Value patchedRecord(const Type& type, Value current, const Patch& patch, const Keys& keys,
                    Interner& interner) {
    if (current.isAbsent()) current = defaultRecord(*type.record, keys);
    auto& fields = current.as<RecordValue>().fields;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const AttributeRecord& field = type.record->attributes[i];
        const auto inner = patch.of(field);
        if (!inner || formOf(field).repeatsKey()) continue;
        fields[i] = patched(*field.type, std::move(fields[i]), *inner, keys, interner);
    }
    return current;
}

/// Merges whole runs: entering the members of a large map one by one would be quadratic.
Value patchedMap(const Type& type, Value current, const Patch& patch, const Keys& keys,
                 Interner& interner) {
    if (current.isAbsent()) current = MapValue{};
    std::vector<MapMember>& held = current.as<MapValue>().members;
    std::vector<MapMember> changed;
    patch.eachMember(*type.key, interner, [&](const Value& key, const Patch& inner) {
        const auto at = std::lower_bound(held.begin(), held.end(), MapMember{key, {}}, isKeyBelow);
        Value before = at != held.end() && at->key == key ? at->value : Value();
        changed.push_back(
            {key, patched(*type.element, std::move(before), inner, keys.under(key), interner)});
    });
    std::sort(changed.begin(), changed.end(), isKeyBelow);
    std::vector<MapMember> merged;
    std::set_union(changed.begin(), changed.end(), held.begin(), held.end(),
                   std::back_inserter(merged), isKeyBelow);
    held = std::move(merged);
    return current;
}

Value listFrom(const Type& type, const JsonValue& json, Interner& interner) {
    ListValue list;
    list.items.reserve(json.size());
    for (const JsonValue& element : json.elements())
        list.items.push_back(*scalarFrom(*type.element, element, interner));
    return list;
}

Value* memberUnder(MapValue& map, const Value& key) {
    const auto at =
        std::lower_bound(map.members.begin(), map.members.end(), MapMember{key, {}}, isKeyBelow);
    return at != map.members.end() && at->key == key ? &at->value : nullptr;
}

const AttributeRecord* firstOf(const Vex::TypeRecord& record) {
    return record.attributes.data();
}

}  // namespace

Value defaultValue(const Type& type, Vex::Role role, const Keys& keys) {
    if (role == Vex::Role::key || role == Vex::Role::outerKey) return keys.repeatedBy(role);
    if (role == Vex::Role::keyCopy) return keys.own;
    if (type.isOptional) return {};
    switch (type.shape) {
        case Shape::boolean:
            return false;
        case Shape::text:
            return Orin::String();
        case Shape::record:
            return defaultRecord(*type.record, keys);
        case Shape::list:
            return ListValue{};
        case Shape::map:
            return MapValue{};
        default:
            return std::uint64_t{0};
    }
}

Value patched(const Type& type, Value current, const Patch& patch, const Keys& keys,
              Interner& interner) {
    if (patch.isNull()) return {};
    if (patch.setsAll()) current = Value();
    switch (type.shape) {
        case Shape::record:
            return patchedRecord(type, std::move(current), patch, keys, interner);
        case Shape::map:
            return patchedMap(type, std::move(current), patch, keys, interner);
        case Shape::list:
            return listFrom(type, patch.value(), interner);
        default:
            return *scalarFrom(type, patch.value(), interner);
    }
}

Value* partOf(const Type& type, Value& value, std::span<const Step> steps) {
    if (value.isAbsent()) return nullptr;
    if (steps.empty()) return &value;
    const Step& step = steps.front();
    if (step.attribute == nullptr) {
        Value* member = memberUnder(value.as<MapValue>(), step.key);
        return member == nullptr ? nullptr : partOf(*type.element, *member, steps.subspan(1));
    }
    const auto index = static_cast<std::size_t>(step.attribute - firstOf(*type.record));
    Value& field = value.as<RecordValue>().fields[index];
    return partOf(*step.attribute->type, field, steps.subspan(1));
}

void removePart(const Type& type, Value& value, std::span<const Step> steps) {
    Value* part = partOf(type, value, steps);
    if (part == nullptr) return;
    if (steps.back().attribute != nullptr) {
        *part = Value();
        return;
    }
    auto& map = partOf(type, value, steps.first(steps.size() - 1))->as<MapValue>();
    std::erase_if(map.members, [&](const MapMember& m) { return m.key == steps.back().key; });
}

}  // namespace QosAgent
