#include "agent/json/JsonBuilder.h"

namespace QosAgent {

JsonBuilder& JsonBuilder::begin(JsonKind kind, std::size_t offset) {
    countItem();
    open_.push_back(nodes_.size());
    nodes_.push_back({static_cast<std::uint32_t>(offset), 0, 0, kind});
    return *this;
}

JsonBuilder& JsonBuilder::end() {
    JsonNode& container = nodes_[open_.back()];
    container.place = static_cast<std::uint32_t>(nodes_.size() - open_.back());
    open_.pop_back();
    return *this;
}

JsonBuilder& JsonBuilder::key(std::string_view name, std::size_t offset) {
    add(JsonKind::string, name, offset);
    return *this;
}

JsonBuilder& JsonBuilder::text(std::string_view text, std::size_t offset) {
    countItem();
    add(JsonKind::string, text, offset);
    return *this;
}

JsonBuilder& JsonBuilder::copy(const JsonValue& value, std::optional<std::size_t> offset) {
    const std::size_t place = offset.value_or(value.offset());
    switch (value.kind()) {
        case JsonKind::object:
            beginObject(place);
            for (const JsonMember& member : value.members())
                key(member.key, offset.value_or(member.keyOffset)).copy(member.value, offset);
            return end();
        case JsonKind::array:
            beginArray(place);
            for (const JsonValue& element : value.elements())
                copy(element, offset);
            return end();
        case JsonKind::boolean:
            countItem();
            add(value.kind(), {}, place);
            nodes_.back().size = value.boolean() ? 1 : 0;
            return *this;
        default:
            countItem();
            add(value.kind(), value.text(), place);
            return *this;
    }
}

Json JsonBuilder::take() {
    // Copies of the exact size: `shrink_to_fit` would ignore a lack of memory.
    Json json(std::vector<JsonNode>(nodes_.begin(), nodes_.end()),
              std::vector<char>(texts_.begin(), texts_.end()));
    nodes_.clear();
    texts_.clear();
    return json;
}

void JsonBuilder::add(JsonKind kind, std::string_view text, std::size_t offset) {
    nodes_.push_back({static_cast<std::uint32_t>(offset), static_cast<std::uint32_t>(text.size()),
                      static_cast<std::uint32_t>(texts_.size()), kind});
    texts_.insert(texts_.end(), text.begin(), text.end());
}

void JsonBuilder::countItem() {
    if (!open_.empty()) ++nodes_[open_.back()].size;
}

Json copyOf(const JsonValue& value) {
    return JsonBuilder().copy(value).take();
}

void writeJson(JsonWriter& writer, const JsonValue& value) {
    switch (value.kind()) {
        case JsonKind::object:
            writer.beginObject();
            for (const JsonMember& member : value.members())
                writeJson(writer.key(member.key), member.value);
            writer.endObject();
            break;
        case JsonKind::array:
            writer.beginArray();
            for (const JsonValue& element : value.elements())
                writeJson(writer, element);
            writer.endArray();
            break;
        case JsonKind::string:
            writer.text(value.text());
            break;
        case JsonKind::number:
            writer.number(value.text());
            break;
        case JsonKind::boolean:
            writer.boolean(value.boolean());
            break;
        case JsonKind::null:
            writer.null();
            break;
    }
}

}  // namespace QosAgent
