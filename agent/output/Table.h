#pragma once

#include <string>

#include "agent/output/Terminal.h"
#include "platform/QosOc/State/ClassifiersDir.h"

namespace QosAgent {

/// Returns the state tree for people: a row for each term, and for each classifier without terms,
/// in aligned columns; one line that says so if there is no classifier. Classifiers and terms stand
/// in natural order (`2` before `10`), DSCP values as `dscpText` writes them.
///
/// On a terminal that is too narrow for a row, sets of DSCP values continue in the next line, and
/// long names too if that is not enough. Elsewhere each row is one line. Nothing is cut off.
std::string stateTable(const QosOc::State::ClassifiersDir& state, const Terminal& terminal = {});

}  // namespace QosAgent
