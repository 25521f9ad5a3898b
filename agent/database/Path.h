#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "agent/database/Database.h"
#include "agent/database/Form.h"

namespace QosAgent {

/// One part of a path: the name of an attribute, or a key in a collection.
struct Step {
    const Vex::AttributeRecord* attribute;  ///< null: a key
    Vex::Value key;
};

/// A place in the database, which need not exist.
struct Path {
    const Subtree* subtree;
    std::vector<Step> steps;  ///< from the subtree's root
    Form form;                ///< the form at the place
    Keys keys;                ///< the keys that the value there may repeat
};

/// Parses a path: a mount path followed by names and keys, separated by `/`. In a key, `~0` stands
/// for `~` and `~1` for `/`. Returns the place, or a message that says what is wrong.
std::variant<Path, std::string> parsePath(Database& database, std::string_view text);

/// Appends `/` and the key, escaped for `parsePath`.
void appendKeyStep(std::string& path, std::string_view key);
/// Returns the key, with `~0` and `~1` unescaped. Returns nothing if another character follows a
/// `~`.
std::optional<std::string> keyFromStep(std::string_view part);

}  // namespace QosAgent
