#include "agent/connect/MachineReader.h"

#include "agent/json/JsonWriter.h"
#include "agent/json/Visible.h"
#include "agent/output/MachineText.h"

namespace QosAgent {
namespace {

void write(JsonWriter& writer, const JsonValue& value) {
    switch (value.kind()) {
        case JsonKind::null:
            writer.null();
            return;
        case JsonKind::boolean:
            writer.boolean(value.boolean());
            return;
        case JsonKind::number:
            writer.number(value.plainNumber().value_or(0));
            return;
        case JsonKind::string:
            writer.text(value.text());
            return;
        case JsonKind::array:
            writer.beginArray();
            for (const JsonValue& element : value.elements())
                write(writer, element);
            writer.endArray();
            return;
        case JsonKind::object:
            writer.beginObject();
            for (const JsonMember& member : value.members())
                write(writer.key(member.key), member.value);
            writer.endObject();
            return;
    }
}

std::string compact(const JsonValue& value) {
    if (value.is(JsonKind::null)) return "none";
    std::string text;
    JsonWriter writer(text);
    write(writer, value);
    return visible(text);
}

/// A name, or nothing for null.
MachineText::Name nameOf(const JsonValue& object, std::string_view member) {
    const auto name = object.find(member);
    if (!name || !name->value.is(JsonKind::string)) return {};
    return name->value.text();
}

void show(MachineText& tree, std::string_view label, const JsonValue& value);

void showMembers(MachineText& tree, const JsonValue& members) {
    for (const JsonValue& member : members.elements()) {
        const auto key = member.find("key");
        const auto value = member.find("value");
        if (key && value)
            tree.value({}, compact(key->value) + ": " + compact(value->value));
        else
            show(tree, {}, member);
    }
}

void show(MachineText& tree, std::string_view label, const JsonValue& value) {
    const auto type = value.find("type");
    if (value.is(JsonKind::array)) {
        tree.beginMembers(label);
        showMembers(tree, value);
        tree.end();
    } else if (const auto attributes = value.find("attributes"); type && attributes) {
        tree.beginMachine(label, type->value.text(), nameOf(value, "key"));
        for (const JsonMember& attribute : attributes->value.members())
            show(tree, attribute.key, attribute.value);
        tree.end();
    } else if (type && value.find("name")) {
        tree.named(label, type->value.text(), nameOf(value, "name"));
    } else {
        tree.value(label, compact(value));
    }
}

}  // namespace

std::string machineTree(const JsonValue& machines) {
    MachineText tree;
    showMembers(tree, machines);
    return tree.text();
}

}  // namespace QosAgent
