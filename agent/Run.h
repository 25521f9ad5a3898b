#pragma once

#include "agent/options/Options.h"

namespace QosAgent {

/// Runs the agent once through: documents, plug-in, change streams, what is to be printed. Returns
/// the exit status; every refusal has been reported.
int run(const Options& options);

}  // namespace QosAgent
