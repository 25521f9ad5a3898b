#pragma once

#include <string>

#include "agent/output/Output.h"

namespace QosAgent {

/// Writes the trace lines of the process to a descriptor, from construction to destruction.
class TraceOutput {
public:
    explicit TraceOutput(int fd);
    ~TraceOutput();
    /// Returns why a line could not be written; empty if all could.
    const std::string& fault() const { return output_.fault(); }

private:
    Output output_;
};

}  // namespace QosAgent
