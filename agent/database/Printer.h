#pragma once

#include <string>
#include <utility>
#include <vector>

#include "agent/database/Database.h"
#include "agent/json/JsonWriter.h"

/// The JSON form of what is in the database, in one canonical order: equal databases print equal
/// bytes, and what is printed reads back as the same.
namespace QosAgent {

/// The members of a collection in ascending key order.
using Members = std::vector<std::pair<Vex::Value, Vex::Value>>;
Members sortedMembers(const Vex::TypedNode& node, const Vex::AttributeRecord& attribute);

/// Not printed: an unset optional, an entity that is none, an empty list or map.
bool isLeftOut(const Vex::Value& value);

void writeEntity(JsonWriter& writer, const Vex::TypedNode& node);
void writeValue(JsonWriter& writer, const Vex::Type& type, const Vex::Value& value);
/// A whole document, with all subtrees.
void writeDatabase(JsonWriter& writer, const Database& database);

}  // namespace QosAgent
