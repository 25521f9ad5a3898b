#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace QosAgent {

/// One element of a path: the name of a node, and the keys of a list entry.
struct PathElement {
    struct Key {
        std::string name;
        std::string value;
        friend bool operator==(const Key&, const Key&) = default;
    };
    std::string name;
    std::vector<Key> keys;

    friend bool operator==(const PathElement&, const PathElement&) = default;
};

/// A place in the OpenConfig model, from its root: `/qos/classifiers/classifier[name=edge]`.
using ModelPath = std::vector<PathElement>;

/// The reason why the text of a path is refused, and the byte of the fault.
struct PathFault {
    std::size_t offset;
    std::string message;
};

/// Parses the string form of a gNMI path, which must be absolute; `/` is the root. Drops the
/// module's prefix of a name (`openconfig-qos:qos`). In the value of a key, `\` escapes `]` and
/// `\`; `\n` and `\r` are line ends, `\uXXXX` and `\UXXXX` a character.
std::variant<ModelPath, PathFault> parseModelPath(std::string_view text);

/// Returns the string form, which `parseModelPath` can parse.
std::string textOf(const ModelPath& path);

/// Returns a member's name without the prefix of the module openconfig-qos. Keeps the prefix of any
/// other module.
std::string_view localName(std::string_view name);

}  // namespace QosAgent
