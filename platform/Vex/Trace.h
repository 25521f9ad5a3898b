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

/// How a piece goes to `writeTrace`: numbers and pointers by value, so that the hot path need not
/// put them into memory to have an address of them.
template <class Piece>
using PassedToTrace = std::conditional_t<std::is_scalar_v<std::decay_t<const Piece>>,
                                         std::decay_t<const Piece>, const Piece&>;

/// Composes and writes a line: the pieces in order. Apart from the hot path.
template <class... Passed>
[[gnu::cold, gnu::noinline]] void writeTrace(const TraceHandle& handle, const TracePoint& point,
                                             Passed... pieces) {
    TraceHelper line(handle, kFunctionEntry, point.source, point.line, point.function);
    (line << ... << pieces);
}

/// Writes the point's signature and the pieces, if function entries are enabled on the handle.
template <class... Pieces>
inline void trace(const TraceHandle& handle, const TracePoint& point, const Pieces&... pieces) {
    if (handle.isEnabled(kFunctionEntry)) [[unlikely]]
        writeTrace<const char*, PassedToTrace<Pieces>...>(handle, point, point.signature,
                                                          pieces...);
}

/// The same, with the line's subject first: the address of a machine, or an entity.
template <class Subject, class... Pieces>
inline void traceOf(const Subject& subject, const TraceHandle& handle, const TracePoint& point,
                    const Pieces&... pieces) {
    if (handle.isEnabled(kFunctionEntry)) [[unlikely]]
        writeTrace<PassedToTrace<Subject>, const char*, PassedToTrace<Pieces>...>(
            handle, point, subject, point.signature, pieces...);
}

}  // namespace Vex
