#pragma once

#include <string>

#include "agent/output/Terminal.h"
#include "platform/QosOc/State/ClassifiersDir.h"

namespace QosAgent {

/// Formats the state tree as a table: a row for each term, and for each classifier without terms,
/// in aligned columns. If there is no classifier, one line says so. Classifiers and terms are in
/// natural order (`2` before `10`). DSCP values are formatted by `dscpText`.
///
/// On a terminal that is too narrow for a row, sets of DSCP values continue on the next line, and
/// long names, too, if that is not enough. Elsewhere each row is one line. Nothing is cut off.
std::string stateTable(const QosOc::State::ClassifiersDir& state, const Terminal& terminal = {});

}  // namespace QosAgent
