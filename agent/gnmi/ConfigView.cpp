#include "agent/gnmi/ConfigView.h"

#include "agent/json/JsonWriter.h"

namespace QosAgent::Gnmi {

namespace {

void write(JsonWriter& writer, std::string& out, const JsonValue& value) {
    if (value.is(JsonKind::string)) {
        writer.text(value.text());
    } else if (value.is(JsonKind::boolean)) {
        writer.boolean(value.boolean());
    } else if (value.is(JsonKind::number)) {
        writer.number(value.plainNumber().value_or(0));
    } else if (value.is(JsonKind::array)) {
        writer.beginArray();
        for (const JsonValue& element : value.elements())
            write(writer, out, element);
        writer.endArray();
    } else {
        writer.null();
    }
}

bool isNamed(std::string_view member, std::string_view name) {
    const std::size_t colon = member.find(':');
    return (colon == std::string_view::npos ? member : member.substr(colon + 1)) == name;
}

}  // namespace

ConfigView ConfigView::child(const SchemaNode& child) const {
    if (!json_) return {};
    for (const JsonMember& member : json_->members())
        if (isNamed(member.key, child.name())) return ConfigView(member.value);
    return {};
}

ConfigView ConfigView::entry(const SchemaNode& list, std::string_view key) const {
    if (!json_) return {};
    for (const JsonValue& element : json_->elements())
        if (ConfigView(element).key(list) == key) return ConfigView(element);
    return {};
}

ConfigView::Entries ConfigView::entries() const {
    static const JsonNode none{0, 0, 1, JsonKind::array};
    return Entries(json_ ? json_->elements() : JsonValue(&none, nullptr).elements());
}

std::string ConfigView::key(const SchemaNode& list) const {
    const ConfigView leaf = child(*list.child(list.key()));
    return leaf ? std::string(leaf.json_->text()) : std::string();
}

std::string ConfigView::json() const {
    std::string text;
    JsonWriter writer(text);
    write(writer, text, *json_);
    return text;
}

}  // namespace QosAgent::Gnmi
