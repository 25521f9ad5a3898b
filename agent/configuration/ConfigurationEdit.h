#pragma once

#include <optional>
#include <variant>
#include <vector>

#include "agent/configuration/ConfigurationTree.h"
#include "agent/configuration/ModelPath.h"
#include "agent/json/JsonReader.h"

namespace QosAgent {

/// One edit of the configuration at one place.
struct ConfigurationEdit {
    enum class Operation {
        remove,   ///< removes the node at the path; no-op if absent
        replace,  ///< replaces the node at the path by the value
        update,   ///< merges the value; adds missing elements to a leaf-list
    };
    Operation operation;
    ModelPath path;
    std::optional<JsonValue> value;  ///< of replace and update
    std::size_t offset;              ///< of the edit in the source text
    std::size_t pathOffset;          ///< of its path
};

/// Reads `[{"delete": PATH}, {"replace": PATH, "value": V}, {"update": PATH, "value": V}, ...]`.
/// A path may lead to any node, and must contain the key of each list entry. The edits refer to the
/// tree of `edits`, which must outlive them.
std::variant<std::vector<ConfigurationEdit>, Fault> readEdits(const JsonValue& edits);

/// Returns the configuration with the edit applied. The two trees share all nodes that the edit
/// does not touch. New nodes get the number `change`. Does not check the value against the model.
std::variant<ConfigurationTree, Fault> edited(const ConfigurationTree& tree,
                                              const ConfigurationEdit& edit, std::uint64_t change);

}  // namespace QosAgent
