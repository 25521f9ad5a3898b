#include "agent/gnmi/Values.h"

#include <charconv>
#include <optional>

#include "agent/json/Json.h"
#include "agent/json/JsonReader.h"
#include "agent/json/JsonWriter.h"

namespace QosAgent::Gnmi {

namespace {

template <class Number>
std::optional<Number> numberOf(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

/// A number, or the text itself if it is none that fits.
Scalar numberOrText(std::string_view text) {
    if (const auto number = numberOf<std::uint64_t>(text)) return *number;
    if (const auto number = numberOf<std::int64_t>(text)) return *number;
    return std::string(text);
}

Scalar scalarOf(const JsonValue& value, const SchemaNode& leaf) {
    if (value.is(JsonKind::boolean)) return value.boolean();
    if (value.is(JsonKind::number) || leaf.type() == "uint64") return numberOrText(value.text());
    return std::string(value.text());
}

void append(std::string& out, const JsonValue& value);

template <class Range, class Append>
void appendList(std::string& out, const Range& items, Append append) {
    bool isFirst = true;
    for (const auto& item : items) {
        if (!isFirst) out += ',';
        isFirst = false;
        append(item);
    }
}

void append(std::string& out, const JsonValue& value) {
    switch (value.kind()) {
        case JsonKind::null:
            out += "null";
            break;
        case JsonKind::boolean:
            out += value.boolean() ? "true" : "false";
            break;
        case JsonKind::number:
            out += value.text();
            break;
        case JsonKind::string:
            appendQuoted(out, value.text());
            break;
        case JsonKind::array:
            out += '[';
            appendList(out, value.elements(), [&](const JsonValue& item) { append(out, item); });
            out += ']';
            break;
        case JsonKind::object:
            out += '{';
            appendList(out, value.members(), [&](const JsonMember& member) {
                appendQuoted(out, member.key);
                out += ':';
                append(out, member.value);
            });
            out += '}';
            break;
    }
}

}  // namespace

Scalar scalarOf(std::string_view json, const SchemaNode& leaf) {
    // Most values have nothing escaped in them.
    const bool isPlainText = json.starts_with('"') && json.find('\\') == std::string_view::npos;
    if (isPlainText && leaf.type() != "uint64") return std::string(json.substr(1, json.size() - 2));
    if (json.starts_with('"') || json.starts_with('t') || json.starts_with('f')) {
        const JsonResult parsed = parseJson(json);
        if (const Json* tree = std::get_if<Json>(&parsed)) return scalarOf(tree->root(), leaf);
    }
    return numberOrText(json);
}

std::vector<Scalar> scalarsOf(std::string_view json, const SchemaNode& leaf) {
    std::vector<Scalar> scalars;
    const JsonResult parsed = parseJson(json);
    if (const Json* tree = std::get_if<Json>(&parsed))
        for (const JsonValue& element : tree->root().elements())
            scalars.push_back(scalarOf(element, leaf));
    return scalars;
}

std::string toJson(const Scalar& scalar, const SchemaNode& leaf) {
    std::string json;
    if (const auto* text = std::get_if<std::string>(&scalar)) {
        appendQuoted(json, *text);
    } else if (const auto* number = std::get_if<std::uint64_t>(&scalar)) {
        json = std::to_string(*number);
        if (leaf.type() == "uint64") json = '"' + json + '"';
    } else if (const auto* integer = std::get_if<std::int64_t>(&scalar)) {
        json = std::to_string(*integer);
    } else {
        json = std::get<bool>(scalar) ? "true" : "false";
    }
    return json;
}

OrRefusal<std::string> compactJson(std::string_view json) {
    const JsonResult parsed = parseJson(json);
    if (const Fault* fault = std::get_if<Fault>(&parsed))
        return Refusal{Code::invalidArgument, "the value is no JSON: byte " +
                                                  std::to_string(fault->offset + 1) + ": " +
                                                  fault->message};
    const JsonValue root = std::get<Json>(parsed).root();
    if (root.is(JsonKind::null))
        return Refusal{Code::invalidArgument, "null is no value; delete what is to go"};
    std::string compact;
    compact.reserve(json.size());
    append(compact, root);
    return compact;
}

}  // namespace QosAgent::Gnmi
