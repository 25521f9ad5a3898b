#pragma once

#include <string_view>

#include "agent/feed/Change.h"
#include "agent/feed/StateValue.h"

namespace QosAgent {

/// Converts an update of the state tree to plain data. `path` is below the tree's root:
/// `classifier/C/state` or `classifier/C/terms/term/T`.
StateValuePtr stateValue(std::string_view path, const Change& update);

}  // namespace QosAgent
