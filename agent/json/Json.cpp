#include "agent/json/Json.h"

#include <cassert>
#include <charconv>
#include <system_error>
#include <utility>

namespace QosAgent {

bool JsonValue::boolean() const {
    assert(is(JsonKind::boolean));
    return node_->size != 0;
}

std::string_view JsonValue::text() const {
    if (!is(JsonKind::string) && !is(JsonKind::number)) return {};
    return {texts_ + node_->place, node_->size};
}

std::optional<std::uint64_t> JsonValue::plainNumber() const {
    if (!is(JsonKind::number)) return std::nullopt;
    const std::string_view digits = text();
    const char* const end = digits.data() + digits.size();
    std::uint64_t number = 0;
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    if (error != std::errc{} || stop != end) return std::nullopt;
    return number;
}

template <typename Item>
JsonRange<Item> JsonValue::itemsIf(JsonKind kind) const {
    const JsonNode* const end = node_ + node_->nodes();
    return {is(kind) ? node_ + 1 : end, end, texts_};
}

JsonRange<JsonValue> JsonValue::elements() const {
    return itemsIf<JsonValue>(JsonKind::array);
}

JsonRange<JsonMember> JsonValue::members() const {
    return itemsIf<JsonMember>(JsonKind::object);
}

std::optional<JsonMember> JsonValue::find(std::string_view name) const {
    for (const JsonMember& member : members()) {
        if (member.key == name) return member;
    }
    return std::nullopt;
}

Json::Json(std::vector<JsonNode> nodes, std::vector<char> texts)
    : nodes_(std::move(nodes)), texts_(std::move(texts)) {
    assert(!nodes_.empty());
}

}  // namespace QosAgent
