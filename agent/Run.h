#pragma once

#include "agent/options/Options.h"

namespace QosAgent {

/// Runs the agent once through: documents, plug-in, change streams, what is to be printed. Returns
/// the exit status; every refusal has been reported.
int run(const Options& options);

/// The whole program: its command line, then `run`. What is thrown is reported in one line; memory
/// that runs out while a change is being told of ends the process.
int runProgram(int argc, const char* const* argv);

}  // namespace QosAgent
