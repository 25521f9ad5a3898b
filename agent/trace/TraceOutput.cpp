#include "agent/trace/TraceOutput.h"

#include "platform/Vex/Trace.h"

namespace QosAgent {

TraceOutput::TraceOutput(int fd) : output_(fd) {
    Vex::traceSinkIs([this](std::string_view line) { output_.line(line); });
}

TraceOutput::~TraceOutput() {
    Vex::traceSinkIs(nullptr);
}

}  // namespace QosAgent
