#pragma once

namespace QosAgent {

/// The exit statuses of the program.
enum ExitCode : int {
    kAllApplied = 0,
    kSomeRefused = 1,  ///< a change-stream line was refused, and the program went on
    kUnusable = 2,     ///< the command line, an input or the plug-in could not be used
};

}  // namespace QosAgent
