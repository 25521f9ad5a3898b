#pragma once

#include <type_traits>

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

/// The argument type of `writeTrace` for a piece. Numbers and pointers are passed by value, so that
/// the hot path need not store them in memory.
template <class Piece>
using PassedToTrace = std::conditional_t<std::is_scalar_v<std::decay_t<const Piece>>,
                                         std::decay_t<const Piece>, const Piece&>;

/// Composes and writes a line from the pieces, in order. Kept out of the hot path.
template <class... Passed>
[[gnu::cold, gnu::noinline]] void writeTrace(const TraceHandle& handle, const TracePoint& point,
                                             Passed... pieces) {
    TraceHelper line(handle, kFunctionEntry, point.source, point.line, point.function);
    (line << ... << pieces);
}

/// Writes the point's signature and the pieces, if the handle has function entries enabled.
template <class... Pieces>
inline void trace(const TraceHandle& handle, const TracePoint& point, const Pieces&... pieces) {
    if (handle.isEnabled(kFunctionEntry)) [[unlikely]]
        writeTrace<const char*, PassedToTrace<Pieces>...>(handle, point, point.signature,
                                                          pieces...);
}

/// The same, preceded by the line's subject: the address of a machine, or an entity.
template <class Subject, class... Pieces>
inline void traceOf(const Subject& subject, const TraceHandle& handle, const TracePoint& point,
                    const Pieces&... pieces) {
    if (handle.isEnabled(kFunctionEntry)) [[unlikely]]
        writeTrace<PassedToTrace<Subject>, const char*, PassedToTrace<Pieces>...>(
            handle, point, subject, point.signature, pieces...);
}

}  // namespace Vex
