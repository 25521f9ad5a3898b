#pragma once

#include <string>
#include <vector>

#include "agent/explain/Evidence.h"

namespace QosAgent {

/// Returns sentences that say where the DSCP values and the target group of a term come from, which
/// inputs are not in force, and what is configured instead; then what its class map matches. Names
/// are safe for a terminal; the lines are not folded.
std::vector<std::string> sourcesOf(const TermEvidence& term);

}  // namespace QosAgent
