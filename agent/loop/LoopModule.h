#pragma once

#include <memory>

#include "agent/loop/Loop.h"

namespace QosAgent {

/// The export of the loop's library. Program and library must have the same `version`.
struct LoopModule {
    unsigned version;
    /// Creates a loop. Throws `std::system_error` on failure.
    std::unique_ptr<Loop> (*make)();
};

inline constexpr unsigned kLoopVersion = 1;
/// The name of the one symbol that the library exports, `extern "C" const LoopModule*`.
inline constexpr const char* kLoopSymbol = "qosAgentLoop";

}  // namespace QosAgent
