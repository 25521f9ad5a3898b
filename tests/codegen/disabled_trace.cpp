#include "platform/Orin/String.h"
#include "platform/Vex/Trace.h"

// What a trace line costs while it is disabled is read off the machine code of these functions.

[[gnu::visibility("hidden")]] extern constinit Vex::TraceHandle tracedHandle;

namespace {
constexpr Vex::TracePoint kPoint{"tests/codegen", 1, "traced", "void traced(const String&)"};
}

extern "C" [[gnu::visibility("default")]] void tracedPieces(const Orin::String& name,
                                                            std::uint32_t tons) {
    Vex::trace(tracedHandle, kPoint, ", name = ", name, ", tons = ", tons);
}

extern "C" [[gnu::visibility("default")]] void tracedSubject(const void* machine,
                                                             const Orin::String& name) {
    Vex::traceOf(machine, tracedHandle, kPoint, ", name = ", name);
}
