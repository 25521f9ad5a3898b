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

/// A named switch for trace lines. A constant-initialised static object; `TraceRegistration`
/// makes its name known. The check costs one load and one branch.
class PLATFORM_API TraceHandle {
public:
    /// `enabled` turns all levels on from the start.
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

/// Lists a handle from construction to destruction. A setting made for its name earlier, by
/// `traceLevelsIs`, takes effect at once: settings may come before the library that has the handle.
class PLATFORM_API TraceRegistration {
public:
    explicit TraceRegistration(TraceHandle& handle);
    ~TraceRegistration();
    TraceRegistration(const TraceRegistration&) = delete;
    TraceRegistration& operator=(const TraceRegistration&) = delete;

private:
    TraceHandle& handle_;
};

/// Enables levels 0 to `count` - 1 of the handles with this name, present and future; `*` names
/// all. A later setting takes the place of an earlier one.
PLATFORM_API void traceLevelsIs(std::string_view name, unsigned count);
/// The names of the handles that are listed, each once, in ascending order.
PLATFORM_API std::vector<std::string_view> traceHandleNames();

/// Receives each finished line, without its newline. An exception that leaves it ends the process.
/// Null: lines go nowhere.
using TraceSink = std::function<void(std::string_view line)>;
PLATFORM_API void traceSinkIs(TraceSink sink);
/// Hands a line to the sink.
PLATFORM_API void writeTraceLine(std::string_view line);

}  // namespace Vex
