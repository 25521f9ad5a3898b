#pragma once

#include <span>
#include <string>

#include "agent/database/Database.h"
#include "agent/json/JsonWriter.h"

/// The live machines, shown through their type records alone: type, key and attributes in the
/// order of declaration. An input is shown as the type and name of the entity; the name of a
/// subtree's root is its path.
namespace QosAgent {

/// Each owner holds machines at the top, such as a mounter does.
using MachineOwners = std::span<const Orin::Ptr<const Vex::TypedNode>>;

/// An array of machines.
void writeMachines(JsonWriter& writer, const Database& database, MachineOwners owners);
/// The same as an indented tree for people, one thing a line; empty when there are no machines.
std::string machineTree(const Database& database, MachineOwners owners);

}  // namespace QosAgent
