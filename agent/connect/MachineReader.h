#pragma once

#include <string>

#include "agent/json/Json.h"

namespace QosAgent {

/// The tree for people of machines as `print` `machines` writes them; empty if there are none.
std::string machineTree(const JsonValue& machines);

}  // namespace QosAgent
