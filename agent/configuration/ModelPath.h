#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace QosAgent {

/// One element of a path: the name of a node, and for an entry of a list its keys.
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

/// What is wrong with the text of a path, and at which byte of it.
struct PathFault {
    std::size_t offset;
    std::string message;
};

/// Reads the string form of a gNMI path, which must be absolute; `/` is the root. A module's prefix
/// of a name (`openconfig-qos:qos`) is left out. In the value of a key, `\` comes before `]` and
/// `\`, `\n` and `\r` stand for line ends, `\uXXXX` and `\UXXXX` for a character.
std::variant<ModelPath, PathFault> parseModelPath(std::string_view text);

/// The string form, which `parseModelPath` reads back.
std::string textOf(const ModelPath& path);

/// A member's name in the model openconfig-qos, without the module's prefix. The prefix of another
/// module stays.
std::string_view localName(std::string_view name);

}  // namespace QosAgent
