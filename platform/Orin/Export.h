#pragma once

/// Exports a symbol from the platform's shared library. All other symbols are hidden.
#define PLATFORM_API __attribute__((visibility("default")))
