#pragma once

#include <string>
#include <utility>
#include <vector>

#include "agent/database/Database.h"
#include "agent/json/JsonWriter.h"

/// Prints the database as JSON in a canonical order: equal databases print equal bytes, and the
/// output reads back as an equal database.
namespace QosAgent {

/// Returns the members of a collection in ascending key order.
using Members = std::vector<std::pair<Vex::Value, Vex::Value>>;
Members sortedMembers(const Vex::TypedNode& node, const Vex::AttributeRecord& attribute);

/// Returns true for values that are not printed: unset optionals, null entities, empty lists.
bool isLeftOut(const Vex::Value& value);

void writeEntity(JsonWriter& writer, const Vex::TypedNode& node);
void writeValue(JsonWriter& writer, const Vex::Type& type, const Vex::Value& value);
/// Writes a whole document, with all subtrees.
void writeDatabase(JsonWriter& writer, const Database& database);

}  // namespace QosAgent
