#pragma once

#include "agent/json/JsonWriter.h"
#include "platform/QosOc/State/ClassifiersDir.h"

namespace QosAgent {

/// Writes the state tree as RFC 7951 JSON of the module openconfig-qos. Lists are in ascending key
/// order, empty containers and lists are left out; an empty tree is `{}`. Values that the model
/// does not allow are written as they are.
void writeOpenConfigState(JsonWriter& writer, const QosOc::State::ClassifiersDir& state);

}  // namespace QosAgent
