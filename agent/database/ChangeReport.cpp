#include "agent/database/ChangeReport.h"

#include <span>

#include "agent/database/Scalars.h"

namespace QosAgent {
namespace {

using Vex::MapMember;
using Vex::MapValue;
using Vex::RecordValue;
using Vex::Shape;
using Vex::Value;

const Value kAbsent;

/// Returns the members of a map; none if the map is absent.
std::span<const MapMember> membersOf(const Value& map) {
    if (map.isAbsent()) return {};
    return map.as<MapValue>().members;
}

const Value& fieldOf(const Value& record, std::size_t index) {
    return record.isAbsent() ? kAbsent : record.as<RecordValue>().fields[index];
}

}  // namespace

void ChangeReport::begin(const Path& path, std::size_t steps) {
    if (!isWanted()) return;
    place_ = path.subtree->mount->path;
    const Vex::AttributeRecord* collection = nullptr;
    for (const Step& step : std::span(path.steps).first(steps)) {
        if (step.attribute != nullptr) {
            place_.append("/").append(step.attribute->name);
            collection = step.attribute;
            continue;
        }
        const bool isMap = collection->collection == nullptr;
        appendKey(isMap ? *collection->type->key : *collection->collection->key, step.key);
    }
}

void ChangeReport::appendKey(const Vex::Type& keyType, const Value& key) {
    appendKeyStep(place_, keyText(keyType, key));
}

void ChangeReport::emptied(const Vex::TypeRecord& type) {
    for (const Vex::AttributeRecord& attribute : type.attributes) {
        const Below below(*this, attribute.name);
        removed();
    }
    changed();
}

void ChangeReport::valueChanged(const Vex::Type& type, const Value& before, const Value& after) {
    if (!isWanted() || before == after) return;
    if (after.isAbsent()) return removed();
    if (before.isAbsent())
        created();
    else
        changed();
    partsChanged(type, before, after);
}

void ChangeReport::partsChanged(const Vex::Type& type, const Value& before, const Value& after) {
    if (type.shape == Shape::record) {
        for (std::size_t i = 0; i < type.record->attributes.size(); ++i) {
            const Vex::AttributeRecord& field = type.record->attributes[i];
            const Below below(*this, field.name);
            if (field.type->isOptional)
                valueChanged(*field.type, fieldOf(before, i), fieldOf(after, i));
            else
                partsChanged(*field.type, fieldOf(before, i), fieldOf(after, i));
        }
    }
    if (type.shape != Shape::map) return;
    // Both are in ascending key order.
    auto earlier = membersOf(before);
    auto later = membersOf(after);
    while (!earlier.empty() || !later.empty()) {
        const bool isGone =
            later.empty() || (!earlier.empty() && keyBelow(earlier.front().key, later.front().key));
        const bool isNew =
            !isGone && (earlier.empty() || keyBelow(later.front().key, earlier.front().key));
        const Below below(*this, *type.key, isGone ? earlier.front().key : later.front().key);
        valueChanged(*type.element, isNew ? kAbsent : earlier.front().value,
                     isGone ? kAbsent : later.front().value);
        if (!isNew) earlier = earlier.subspan(1);
        if (!isGone) later = later.subspan(1);
    }
}

}  // namespace QosAgent
