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

/// A place in the database, whether or not anything is there.
struct Path {
    const Subtree* subtree;
    std::vector<Step> steps;  ///< from the subtree's root
    Form form;                ///< of what the path leads to
    Keys keys;                ///< that this may repeat
};

/// The place that `text` names: a mounted path followed by names and keys, separated by `/`; `~0`
/// and `~1` stand for `~` and `/` in a key. Else what is wrong with it.
std::variant<Path, std::string> parsePath(Database& database, std::string_view text);

/// Appends `/` and the key as `parsePath` reads it.
void appendKeyStep(std::string& path, std::string_view key);
/// The key that a part between two `/` stands for; nothing if a `~` in it begins neither `~0` nor
/// `~1`.
std::optional<std::string> keyFromStep(std::string_view part);

}  // namespace QosAgent
