#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "agent/database/Interner.h"
#include "agent/json/Json.h"
#include "platform/Vex/TypeRecord.h"

/// Converts single values to and from text: keys, and values that are neither records nor lists.
namespace QosAgent {

/// Parses a key. Returns nothing if `text` is not a valid key.
std::optional<Vex::Value> keyFrom(const Vex::Type& type, std::string_view text, Interner& interner);
/// Returns the message for a text that `keyFrom` refuses.
std::string keyFault(const Vex::Type& type, std::string_view text);
std::string keyText(const Vex::Type& type, const Vex::Value& key);
/// The order of keys: absent first, names by bytes, numbers by value, records by field.
bool keyBelow(const Vex::Value& left, const Vex::Value& right);

/// Converts a JSON value. Returns nothing if it is not a valid value of the type.
std::optional<Vex::Value> scalarFrom(const Vex::Type& type, const JsonValue& json,
                                     Interner& interner);
/// Returns the message for a JSON value that `scalarFrom` refuses.
std::string scalarFault(const Vex::Type& type, const JsonValue& json);

/// Returns `expected WANTED, found ...`.
std::string unexpected(std::string_view wanted, JsonKind found);

}  // namespace QosAgent
