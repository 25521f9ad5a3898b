#pragma once

#include "platform/Orin/Export.h"

namespace Vex {

/// Stops the program through the C library's assertion failure, which prints the standard text:
/// `PROGRAM: SOURCE:LINE: FUNCTION: Assertion `EXPRESSION' failed.`
[[noreturn]] PLATFORM_API void assertFail(const char* expression, const char* source, unsigned line,
                                          const char* function) noexcept;

/// Stops the program unless `holds` is true. The texts are those of `assertFail`.
inline void assertThat(bool holds, const char* expression, const char* source, unsigned line,
                       const char* function) noexcept {
    if (!holds) [[unlikely]]
        assertFail(expression, source, line, function);
}

/// Stops the program for a failed condition that has a message; prints both.
class PLATFORM_API SassertHelper {
public:
    SassertHelper(const char* condition, const char* message) noexcept
        : condition_(condition), message_(message) {}
    /// The texts are those of `assertFail`.
    [[noreturn]] void fail(const char* expression, const char* source, unsigned line,
                           const char* function) const noexcept;

private:
    const char* condition_;
    const char* message_;
};

}  // namespace Vex
