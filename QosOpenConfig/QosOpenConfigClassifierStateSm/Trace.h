#pragma once

#include "platform/Vex/Trace.h"

namespace QosOc {

/// The handle of all machines and of the state writer: "OpenConfigQosClfStateSm".
[[gnu::visibility("hidden")]] extern constinit Vex::TraceHandle traceHandle;

inline constexpr const char* kSource = "QosOpenConfig/QosOpenConfigClassifierStateSm";
/// The source name of the policy-map machines, which contains the root folder.
inline constexpr const char* kPmapSource = "/src/QosOpenConfig/QosOpenConfigClassifierStateSm";

/// Makes a trace point of this library. The default line is that of the call.
consteval Vex::TracePoint tracePoint(const char* function, const char* signature,
                                     unsigned line = __builtin_LINE()) {
    return {kSource, line, function, signature};
}
consteval Vex::TracePoint pmapTracePoint(const char* function, const char* signature,
                                         unsigned line = __builtin_LINE()) {
    return {kPmapSource, line, function, signature};
}

/// Returns true if the lines of this library are enabled.
inline bool traceEnabled() noexcept {
    return traceHandle.isEnabled(Vex::kFunctionEntry);
}
/// Writes a line without a subject.
template <class... Pieces>
inline void trace(const Vex::TracePoint& point, const Pieces&... pieces) {
    Vex::trace(traceHandle, point, pieces...);
}
/// Writes a line of a machine, which begins with the machine's address.
template <class... Pieces>
inline void traceOf(const void* machine, const Vex::TracePoint& point, const Pieces&... pieces) {
    Vex::traceOf(machine, traceHandle, point, pieces...);
}

}  // namespace QosOc
