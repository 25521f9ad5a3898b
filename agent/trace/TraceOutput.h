#pragma once

#include <string>

#include "agent/output/Output.h"

namespace QosAgent {

/// Where the trace lines of the process go, from construction to destruction.
class TraceOutput {
public:
    explicit TraceOutput(int fd);
    ~TraceOutput();
    /// Why a line could not be written; empty while all could.
    const std::string& fault() const { return output_.fault(); }

private:
    Output output_;
};

}  // namespace QosAgent
