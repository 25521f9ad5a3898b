#pragma once

#include <optional>
#include <variant>
#include <vector>

#include "agent/configuration/ConfigurationTree.h"
#include "agent/configuration/ModelPath.h"
#include "agent/json/JsonReader.h"

namespace QosAgent {

/// One change of the configuration at one place.
struct ConfigurationEdit {
    enum class Operation {
        remove,   ///< what is at the path is removed; no error if nothing is
        replace,  ///< the value takes the place of what is at the path
        update,   ///< the value is merged in; a leaf-list gets the elements that it does not have
    };
    Operation operation;
    ModelPath path;
    std::optional<JsonValue> value;  ///< of replace and update
    std::size_t offset;              ///< of the edit in the source text
    std::size_t pathOffset;          ///< of its path
};

/// Reads `[{"delete": PATH}, {"replace": PATH, "value": V}, {"update": PATH, "value": V}, ...]`.
/// Paths may lead to any node, and must name each entry of a list by its key. The edits refer to
/// the tree of `edits`.
std::variant<std::vector<ConfigurationEdit>, Fault> readEdits(const JsonValue& edits);

/// The configuration with the edit applied; both share what the edit does not touch. What the edit
/// says belongs to the change with that number. Does not check whether the model allows it.
std::variant<ConfigurationTree, Fault> edited(const ConfigurationTree& tree,
                                              const ConfigurationEdit& edit, std::uint64_t change);

}  // namespace QosAgent
