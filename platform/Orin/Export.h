#pragma once

/// Marks what the platform's shared library offers to agents and plug-ins; all else stays hidden.
#define PLATFORM_API __attribute__((visibility("default")))
