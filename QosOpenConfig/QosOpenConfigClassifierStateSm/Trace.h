#pragma once

#include "platform/Vex/Trace.h"

namespace QosOc {

/// The one handle of all machines and of the state writer: "OpenConfigQosClfStateSm".
[[gnu::visibility("hidden")]] extern constinit Vex::TraceHandle traceHandle;

inline constexpr const char* kSource = "QosOpenConfig/QosOpenConfigClassifierStateSm";
/// The policy-map machines name their source with its root.
inline constexpr const char* kPmapSource = "/src/QosOpenConfig/QosOpenConfigClassifierStateSm";

/// A trace point of this library; without a line of its own it has that of its definition.
consteval Vex::TracePoint tracePoint(const char* function, const char* signature,
                                     unsigned line = __builtin_LINE()) {
    return {kSource, line, function, signature};
}
consteval Vex::TracePoint pmapTracePoint(const char* function, const char* signature,
                                         unsigned line = __builtin_LINE()) {
    return {kPmapSource, line, function, signature};
}

/// True when the lines of this library are due.
inline bool traceEnabled() noexcept {
    return traceHandle.isEnabled(Vex::kFunctionEntry);
}
/// A line without a subject.
template <class... Pieces>
inline void trace(const Vex::TracePoint& point, const Pieces&... pieces) {
    Vex::trace(traceHandle, point, pieces...);
}
/// A line of a machine: its address comes first.
template <class... Pieces>
inline void traceOf(const void* machine, const Vex::TracePoint& point, const Pieces&... pieces) {
    Vex::traceOf(machine, traceHandle, point, pieces...);
}

}  // namespace QosOc
