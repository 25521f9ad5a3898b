#include "agent/database/Scalars.h"

#include <algorithm>
#include <charconv>

#include "agent/json/Excerpt.h"

namespace QosAgent {
namespace {

using Vex::Shape;
using Vex::Type;
using Vex::Value;

constexpr std::string_view kKinds[] = {"null",     "a boolean", "a number",
                                       "a string", "an array",  "an object"};

bool isDigits(std::string_view text) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    return !text.empty() && std::all_of(text.begin(), text.end(), isDigit);
}

/// Parses decimal digits without leading zeros.
std::optional<std::uint64_t> plainNumber(std::string_view text) {
    if (!isDigits(text) || (text.size() > 1 && text[0] == '0')) return {};
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) return {};
    return number;
}

std::optional<Value> within(const Type& type, std::optional<std::uint64_t> number) {
    if (!number || *number > type.maximum) return {};
    return Value(*number);
}

std::optional<Value> enumerationFrom(const Type& type, std::string_view name) {
    for (const Vex::EnumName& known : type.names)
        if (known.name == name) return Value(known.value);
    return {};
}

/// A number is accepted only for a value without a name.
std::optional<Value> unnamedFrom(const Type& type, std::optional<std::uint64_t> number) {
    if (type.isNamedOnly || !number || !Vex::nameOf(type.names, *number).empty()) return {};
    return within(type, number);
}

std::string outOfRange(const Type& type, std::string_view number) {
    return excerpt(number) + " is out of range 0 to " + std::to_string(type.maximum);
}

std::string numberFault(const Type& type, std::string_view text) {
    if (!isDigits(text)) return "expected plain decimal digits, found " + excerpt(text);
    if (text.size() > 1 && text[0] == '0')
        return "expected a number without leading zeros, found " + excerpt(text);
    return outOfRange(type, text);
}

std::string enumerationFault(const Type& type, std::string_view text) {
    if (isDigits(text) && !type.isNamedOnly) {
        const auto number = plainNumber(text);
        const std::string_view name = number ? Vex::nameOf(type.names, *number) : "";
        if (!name.empty()) return excerpt(text) + " must be written by its name " + excerpt(name);
        return numberFault(type, text);
    }
    std::string known;
    for (const Vex::EnumName& each : type.names)
        known.append(known.empty() ? "" : ", ").append(each.name);
    return "unknown name " + excerpt(text) + ", expected one of " + known;
}

}  // namespace

std::string unexpected(std::string_view wanted, JsonKind found) {
    return "expected " + std::string(wanted) + ", found " +
           std::string(kKinds[static_cast<std::size_t>(found)]);
}

std::optional<Value> keyFrom(const Type& type, std::string_view text, Interner& interner) {
    if (type.shape == Shape::text) {
        if (text.empty()) return {};
        return Value(interner(text));
    }
    if (type.shape == Shape::number) return within(type, plainNumber(text));
    if (const auto named = enumerationFrom(type, text)) return named;
    return unnamedFrom(type, plainNumber(text));
}

std::string keyFault(const Type& type, std::string_view text) {
    if (type.shape == Shape::text) return "a name must not be empty";
    return type.shape == Shape::number ? numberFault(type, text) : enumerationFault(type, text);
}

std::string keyText(const Type& type, const Value& key) {
    if (type.shape == Shape::text) return std::string(key.as<Orin::String>().view());
    const std::uint64_t number = key.as<std::uint64_t>();
    const std::string_view name = Vex::nameOf(type.names, number);
    return name.empty() ? std::to_string(number) : std::string(name);
}

bool keyBelow(const Value& left, const Value& right) {
    if (left.index() != right.index()) return left.index() < right.index();
    if (const auto* number = std::get_if<std::uint64_t>(&left))
        return *number < right.as<std::uint64_t>();
    if (const auto* text = std::get_if<Orin::String>(&left))
        return *text < right.as<Orin::String>();
    if (const auto* record = std::get_if<Vex::RecordValue>(&left)) {
        const auto& fields = right.as<Vex::RecordValue>().fields;
        return std::lexicographical_compare(record->fields.begin(), record->fields.end(),
                                            fields.begin(), fields.end(), keyBelow);
    }
    return false;
}

std::optional<Value> scalarFrom(const Type& type, const JsonValue& json, Interner& interner) {
    switch (type.shape) {
        case Shape::boolean:
            if (!json.is(JsonKind::boolean)) return {};
            return Value(json.boolean());
        case Shape::number:
            return within(type, json.plainNumber());
        case Shape::text:
            if (!json.is(JsonKind::string)) return {};
            return Value(interner(json.text()));
        case Shape::enumeration:
            if (json.is(JsonKind::string)) return enumerationFrom(type, json.text());
            return unnamedFrom(type, json.plainNumber());
        default:
            return {};
    }
}

std::string scalarFault(const Type& type, const JsonValue& json) {
    if (type.shape == Shape::boolean) return unexpected("true or false", json.kind());
    if (type.shape == Shape::number)
        return json.is(JsonKind::number) ? numberFault(type, json.text())
                                         : unexpected("a number", json.kind());
    if (type.shape == Shape::text) return unexpected("a string", json.kind());
    if (json.is(JsonKind::string) || (json.is(JsonKind::number) && !type.isNamedOnly))
        return enumerationFault(type, json.text());
    return unexpected("a name", json.kind());
}

}  // namespace QosAgent
