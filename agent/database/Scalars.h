#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "agent/database/Interner.h"
#include "agent/json/Json.h"
#include "platform/Vex/TypeRecord.h"

/// How single values look as text: keys, and values that are neither records nor lists.
namespace QosAgent {

/// The key that `text` stands for; nothing if it stands for none.
std::optional<Vex::Value> keyFrom(const Vex::Type& type, std::string_view text, Interner& interner);
/// Why `keyFrom` gave nothing.
std::string keyFault(const Vex::Type& type, std::string_view text);
std::string keyText(const Vex::Type& type, const Vex::Value& key);
/// Ascending: absent first, names by bytes, numbers by value, records field by field.
bool keyBelow(const Vex::Value& left, const Vex::Value& right);

/// The value that a JSON value stands for; nothing if it stands for none.
std::optional<Vex::Value> scalarFrom(const Vex::Type& type, const JsonValue& json,
                                     Interner& interner);
/// Why `scalarFrom` gave nothing.
std::string scalarFault(const Vex::Type& type, const JsonValue& json);

/// `expected WANTED, found ...`.
std::string unexpected(std::string_view wanted, JsonKind found);

}  // namespace QosAgent
