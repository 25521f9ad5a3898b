#pragma once

#include <span>
#include <string>

#include "agent/database/Database.h"
#include "agent/json/JsonWriter.h"

/// Prints the live machines by their type records: type, key, and attributes in the order of
/// declaration. An input is printed as the type and name of the entity; the name of a subtree's
/// root is its path.
namespace QosAgent {

/// The objects that own the topmost machines, such as mounters.
using MachineOwners = std::span<const Orin::Ptr<const Vex::TypedNode>>;

/// Writes an array of machines.
void writeMachines(JsonWriter& writer, const Database& database, MachineOwners owners);
/// Returns the machines as an indented tree for people; empty if there are none.
std::string machineTree(const Database& database, MachineOwners owners);

}  // namespace QosAgent
