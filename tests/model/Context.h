#pragma once

#include <map>
#include <string>
#include <utility>

#include "tests/model/Inputs.h"
#include "tests/model/State.h"

/// The machines of the model. A machine is what it watches, and an id by which trace lines tell it
/// from others.
namespace Model {

/// What all machines share.
struct Context {
    const Inputs& inputs;
    State& state;
    Trace& trace;
    Wrong wrong;
    Id lastId = kNobody;
    /// How many notifications use a classifier by policy maps.
    std::map<std::pair<std::string, Family>, unsigned> registry{};

    Id nextId() { return ++lastId; }
};

}  // namespace Model
