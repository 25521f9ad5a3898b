#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/Orin/Export.h"
#include "platform/Orin/String.h"
#include "platform/Vex/NamedEnum.h"
#include "platform/Vex/TraceHandle.h"
#include "platform/Vex/TypedNode.h"

namespace Vex {

/// Composes one trace line: `TIMESTAMP HANDLE/LEVEL SOURCE:LINE FUNCTION BODY`. The destructor
/// writes it.
class PLATFORM_API TraceHelper {
public:
    TraceHelper(const TraceHandle& handle, unsigned level, std::string_view source, unsigned line,
                std::string_view function);
    ~TraceHelper();
    TraceHelper(const TraceHelper&) = delete;
    TraceHelper& operator=(const TraceHelper&) = delete;

    /// Text of the program itself: written unchanged.
    TraceHelper& operator<<(std::string_view piece);
    TraceHelper& operator<<(const char* piece) { return *this << std::string_view(piece); }
    /// Text from outside: control characters and `\` are escaped.
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

}  // namespace Vex
