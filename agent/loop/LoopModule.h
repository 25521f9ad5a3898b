#pragma once

#include <memory>

#include "agent/loop/Loop.h"

namespace QosAgent {

/// What the loop's library exports. Program and library must agree on `version`.
struct LoopModule {
    unsigned version;
    /// Throws `std::system_error` if the system refuses a loop.
    std::unique_ptr<Loop> (*make)();
};

inline constexpr unsigned kLoopVersion = 1;
/// The name of the one symbol that the library exports, `extern "C" const LoopModule*`.
inline constexpr const char* kLoopSymbol = "qosAgentLoop";

}  // namespace QosAgent
