#pragma once

#include "agent/output/Output.h"

namespace QosAgent {

/// Where the trace lines of the process go, from construction to destruction.
class TraceOutput {
public:
    explicit TraceOutput(int fd);
    ~TraceOutput();

private:
    Output output_;
};

}  // namespace QosAgent
