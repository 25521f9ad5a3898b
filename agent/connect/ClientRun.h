#pragma once

#include "agent/options/Options.h"

namespace QosAgent {

/// Runs the program once as a client of a service: streams to it, what it holds from it. Returns
/// the exit status; every refusal has been reported.
int runClient(const Options& options);

}  // namespace QosAgent
