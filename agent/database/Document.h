#pragma once

#include <optional>

#include "agent/database/Editor.h"
#include "agent/json/Faults.h"

namespace QosAgent {

/// Returns the first fault of a document, if any.
std::optional<Fault> checkDocument(Database& database, const JsonValue& document);
/// Checks a document, an object of subtrees by mount path. Adds its faults in the order of the text
/// until `faults` is full. A document without a fault can be merged as a whole.
void checkDocument(Database& database, const JsonValue& document, Faults& faults);

/// Merges a document into the database. The caller must have checked it.
void mergeDocument(Database& database, const JsonValue& document, Editor::Progress progress = {});

}  // namespace QosAgent
