#pragma once

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "platform/Orin/Export.h"

namespace Vex {

/// Trace levels run from 0 to 9.
inline constexpr unsigned kTraceLevels = 10;
/// The level of function entries: that of every line this system writes.
inline constexpr unsigned kFunctionEntry = 8;

/// A named switch for trace lines. A constant-initialised static object, whose name
/// `TraceRegistration` registers. A check costs one load and one branch.
class PLATFORM_API TraceHandle {
public:
    /// If `enabled`, all levels are on from the start.
    constexpr TraceHandle(const char* name, bool enabled) noexcept
        : name_(name), enabledLevels_(enabled ? kTraceLevels : 0) {}
    TraceHandle(const TraceHandle&) = delete;
    TraceHandle& operator=(const TraceHandle&) = delete;

    std::string_view name() const noexcept { return name_; }
    bool isEnabled(unsigned level) const noexcept { return enabledLevels_ > level; }
    /// Enables the levels 0 to `count` - 1 and disables the others.
    void enabledLevelsIs(unsigned count) noexcept {
        enabledLevels_ = static_cast<std::uint8_t>(count);
    }

private:
    const char* name_;
    std::uint8_t enabledLevels_;
};

/// Registers a handle from construction to destruction. An earlier setting for its name by
/// `traceLevelsIs` takes effect at once, so that settings may be made before the library is loaded.
class PLATFORM_API TraceRegistration {
public:
    explicit TraceRegistration(TraceHandle& handle);
    ~TraceRegistration();
    TraceRegistration(const TraceRegistration&) = delete;
    TraceRegistration& operator=(const TraceRegistration&) = delete;

private:
    TraceHandle& handle_;
};

/// Enables levels 0 to `count` - 1 of all present and future handles with this name; `*` means all
/// handles. A later setting replaces an earlier one.
PLATFORM_API void traceLevelsIs(std::string_view name, unsigned count);
/// Returns the names of the registered handles, each once, in ascending order.
PLATFORM_API std::vector<std::string_view> traceHandleNames();

/// Sets the function that receives each finished line, without a newline. An exception that leaves
/// it ends the process. If null, lines are discarded.
using TraceSink = std::function<void(std::string_view line)>;
PLATFORM_API void traceSinkIs(TraceSink sink);
/// Passes a line to the sink.
PLATFORM_API void writeTraceLine(std::string_view line);

}  // namespace Vex
