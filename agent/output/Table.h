#pragma once

#include <string>

#include "agent/output/Terminal.h"
#include "platform/QosOc/State/ClassifiersDir.h"

namespace QosAgent {

/// The state tree for people: a row for each term, and for each classifier without terms, in
/// aligned columns. Long sets of DSCP values go on in the next line, and so do long names where the
/// terminal would be too narrow for the row; nothing is ever cut off.
std::string stateTable(const QosOc::State::ClassifiersDir& state, const Terminal& terminal = {});

}  // namespace QosAgent
