#pragma once

namespace QosAgent {

/// How the program ends.
enum ExitCode : int {
    kAllApplied = 0,
    kSomeRefused = 1,  ///< some change-stream line, and the program went on
    kUnusable = 2,     ///< the command line, a document, a change stream or the plug-in
};

}  // namespace QosAgent
