#pragma once

#include <string>
#include <vector>

#include "tests/model/Json.h"

namespace Model {

/// One line of a change stream.
struct Change {
    enum class Verb { update, replace, remove, touch, restart };
    Verb verb;
    /// The path of a subtree, then names of attributes and keys by turns.
    std::vector<std::string> path;
    Json value;

    bool hasValue() const { return verb == Verb::update || verb == Verb::replace; }
    /// As the agent reads it.
    std::string line() const;
};

}  // namespace Model
