#include "QosOpenConfig/QosOpenConfigClassifierStateSm/Trace.h"

namespace QosOc {

constinit Vex::TraceHandle traceHandle("OpenConfigQosClfStateSm", false);

}  // namespace QosOc
