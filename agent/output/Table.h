#pragma once

#include <string>

#include "platform/QosOc/State/ClassifiersDir.h"

namespace QosAgent {

/// The state tree for people: a row for each term, and for each classifier without terms, in
/// aligned columns. Long sets of DSCP values go on in the next line.
std::string stateTable(const QosOc::State::ClassifiersDir& state);

}  // namespace QosAgent
