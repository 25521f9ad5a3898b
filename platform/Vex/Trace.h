#pragma once

#include "platform/Vex/TraceHandle.h"
#include "platform/Vex/TraceHelper.h"

namespace Vex {

/// The fixed parts of a trace line.
struct TracePoint {
    const char* source;
    unsigned line;
    const char* function;
    const char* signature;
};

/// Composes and writes a line: the pieces in order. Apart from the hot path.
template <class... Pieces>
[[gnu::cold, gnu::noinline]] void writeTrace(const TraceHandle& handle, const TracePoint& point,
                                             const Pieces&... pieces) {
    TraceHelper line(handle, kFunctionEntry, point.source, point.line, point.function);
    (line << ... << pieces);
}

/// Writes the point's signature and the pieces, if function entries are enabled on the handle.
template <class... Pieces>
inline void trace(const TraceHandle& handle, const TracePoint& point, const Pieces&... pieces) {
    if (handle.isEnabled(kFunctionEntry)) [[unlikely]]
        writeTrace(handle, point, point.signature, pieces...);
}

/// The same, with the line's subject first: the address of a machine, or an entity.
template <class Subject, class... Pieces>
inline void traceOf(const Subject& subject, const TraceHandle& handle, const TracePoint& point,
                    const Pieces&... pieces) {
    if (handle.isEnabled(kFunctionEntry)) [[unlikely]]
        writeTrace(handle, point, subject, point.signature, pieces...);
}

}  // namespace Vex
