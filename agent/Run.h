#pragma once

#include "agent/options/Options.h"

namespace QosAgent {

/// Runs the agent: loads the documents, starts the plug-in, applies the change streams, prints the
/// results. Reports refusals on standard error. Returns the exit status.
int run(const Options& options);

/// Runs the whole program: parses the command line, then calls `run`. Reports an exception in one
/// line. If memory runs out during a notification, the process ends.
int runProgram(int argc, const char* const* argv);

}  // namespace QosAgent
