#include "platform/Vex/Assert.h"

// The C library declares this function only if assertions are on; ours always are.
#undef NDEBUG
#include <cassert>
#include <cstdio>

namespace Vex {

void assertFail(const char* expression, const char* source, unsigned line,
                const char* function) noexcept {
    __assert_fail(expression, source, line, function);
}

void SassertHelper::fail(const char* expression, const char* source, unsigned line,
                         const char* function) const noexcept {
    std::fprintf(stderr, "%s: %s\n", condition_, message_);
    assertFail(expression, source, line, function);
}

}  // namespace Vex
