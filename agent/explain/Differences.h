#pragma once

#include "agent/explain/Evidence.h"
#include "agent/json/JsonWriter.h"

namespace QosAgent {

/// Writes what is configured and is not so in the state; see `Explainer::writeDifferences`.
void writeDifferences(JsonWriter& writer, const EvidenceReader& reader);

}  // namespace QosAgent
