#include "agent/database/Printer.h"

#include <algorithm>

#include "agent/database/Scalars.h"

namespace QosAgent {
namespace {

using Vex::AttributeRecord;
using Vex::Shape;
using Vex::Type;
using Vex::Value;

void writeCollection(JsonWriter& writer, const Vex::TypedNode& node,
                     const AttributeRecord& attribute) {
    writer.beginObject();
    for (const auto& [key, member] : sortedMembers(node, attribute)) {
        writer.key(keyText(*attribute.collection->key, key));
        writeValue(writer, *attribute.type, member);
    }
    writer.endObject();
}

void writeRecord(JsonWriter& writer, const Vex::TypeRecord& record, const Value& value) {
    const auto& fields = value.as<Vex::RecordValue>().fields;
    writer.beginObject();
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (isLeftOut(fields[i])) continue;
        writer.key(record.attributes[i].name);
        writeValue(writer, *record.attributes[i].type, fields[i]);
    }
    writer.endObject();
}

void writeList(JsonWriter& writer, const Type& element, const Value& value) {
    writer.beginArray();
    for (const Value& item : value.as<Vex::ListValue>().items)
        writeValue(writer, element, item);
    writer.endArray();
}

void writeMap(JsonWriter& writer, const Type& type, const Value& value) {
    writer.beginObject();
    for (const Vex::MapMember& member : value.as<Vex::MapValue>().members) {
        writer.key(keyText(*type.key, member.key));
        writeValue(writer, *type.element, member.value);
    }
    writer.endObject();
}

void writeEnumeration(JsonWriter& writer, const Type& type, const Value& value) {
    const std::uint64_t number = value.as<std::uint64_t>();
    const std::string_view name = Vex::nameOf(type.names, number);
    if (name.empty())
        writer.number(number);
    else
        writer.text(name);
}

}  // namespace

Members sortedMembers(const Vex::TypedNode& node, const AttributeRecord& attribute) {
    Members members;
    members.reserve(attribute.collection->size(&node));
    attribute.collection->walk(
        &node, [&](const Value& key, const Value& member) { members.emplace_back(key, member); });
    if (!attribute.collection->isOrdered)
        std::sort(members.begin(), members.end(), [](const auto& left, const auto& right) {
            return keyBelow(left.first, right.first);
        });
    return members;
}

bool isLeftOut(const Value& value) {
    if (const auto* node = std::get_if<Vex::NodeRef>(&value)) return !*node;
    if (const auto* list = std::get_if<Vex::ListValue>(&value)) return list->items.empty();
    if (const auto* map = std::get_if<Vex::MapValue>(&value)) return map->members.empty();
    return value.isAbsent();
}

void writeEntity(JsonWriter& writer, const Vex::TypedNode& node) {
    writer.beginObject();
    for (const AttributeRecord& attribute : node.typeData().attributes) {
        if (attribute.isHidden) continue;
        if (attribute.collection != nullptr) {
            if (attribute.collection->size(&node) == 0) continue;
            writer.key(attribute.name);
            writeCollection(writer, node, attribute);
            continue;
        }
        const Value value = attribute.read(&node);
        if (isLeftOut(value)) continue;
        writer.key(attribute.name);
        writeValue(writer, *attribute.type, value);
    }
    writer.endObject();
}

void writeValue(JsonWriter& writer, const Type& type, const Value& value) {
    switch (type.shape) {
        case Shape::boolean:
            writer.boolean(value.as<bool>());
            return;
        case Shape::number:
            writer.number(value.as<std::uint64_t>());
            return;
        case Shape::text:
            writer.text(value.as<Orin::String>());
            return;
        case Shape::enumeration:
            return writeEnumeration(writer, type, value);
        case Shape::record:
            return writeRecord(writer, *type.record, value);
        case Shape::list:
            return writeList(writer, *type.element, value);
        case Shape::map:
            return writeMap(writer, type, value);
        case Shape::entity:
            break;
    }
    if (const auto& node = value.as<Vex::NodeRef>())
        writeEntity(writer, *node);
    else
        writer.null();
}

void writeDatabase(JsonWriter& writer, const Database& database) {
    writer.beginObject();
    for (const Subtree& subtree : database.subtrees()) {
        writer.key(subtree.mount->path);
        writeEntity(writer, *subtree.root);
    }
    writer.endObject();
}

}  // namespace QosAgent
