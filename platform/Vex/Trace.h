#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/Orin/Export.h"
#include "platform/Orin/String.h"
#include "platform/Vex/NamedEnum.h"
#include "platform/Vex/TypedNode.h"

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

/// Receives each finished line, without its newline. Null: lines go nowhere.
using TraceSink = std::function<void(std::string_view line)>;
PLATFORM_API void traceSinkIs(TraceSink sink);
/// Hands a line to the sink.
PLATFORM_API void writeTraceLine(std::string_view line);

/// One trace line under construction; written when it is destroyed:
/// `TIMESTAMP HANDLE/LEVEL SOURCE:LINE FUNCTION BODY`.
class PLATFORM_API TraceHelper {
public:
    TraceHelper(const TraceHandle& handle, unsigned level, std::string_view source, unsigned line,
                std::string_view function);
    ~TraceHelper();
    TraceHelper(const TraceHelper&) = delete;
    TraceHelper& operator=(const TraceHelper&) = delete;

    /// Pieces of the program: written as they are.
    TraceHelper& operator<<(std::string_view piece);
    TraceHelper& operator<<(const char* piece) { return *this << std::string_view(piece); }
    /// An inserted text: control characters and `\` are escaped.
    TraceHelper& operator<<(const Orin::String& value);
    TraceHelper& operator<<(bool value);
    TraceHelper& operator<<(std::uint32_t value);
    /// An address.
    TraceHelper& operator<<(const void* value);
    /// An entity: its type's name, `@` and its address.
    TraceHelper& operator<<(const TypedNode& entity);
    template <NamedEnum E>
    TraceHelper& operator<<(E value) {
        return *this << std::string_view(enumText(value));
    }

private:
    std::string text_;
};

/// The fixed parts of a trace line. Without a line number of its own, that of its definition.
struct TracePoint {
    const char* function;
    const char* signature;
    unsigned line = __builtin_LINE();
};

}  // namespace Vex
