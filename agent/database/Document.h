#pragma once

#include <optional>

#include "agent/database/Editor.h"
#include "agent/json/JsonReader.h"

namespace QosAgent {

/// The first fault of a state document, an object of subtrees by mounted path; nothing if it can be
/// merged as a whole.
std::optional<Fault> checkDocument(Database& database, const JsonValue& document);

/// Merges a document that has been checked into the database.
void mergeDocument(Database& database, const JsonValue& document, Editor::Progress progress = {});

}  // namespace QosAgent
