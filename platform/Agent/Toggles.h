#pragma once

#include <functional>
#include <string_view>

#include "platform/Orin/Export.h"

namespace Agent {

/// Reads a toggle from its file. Returns `fallback` if the file has no such toggle.
using ToggleReader =
    std::function<bool(std::string_view toggle, std::string_view file, bool fallback)>;

/// Installs the function that reads toggles. The agent calls this, because it knows where the files
/// are and which format they have. If null, every toggle has its fallback value.
PLATFORM_API void toggleReaderIs(ToggleReader reader);

}  // namespace Agent

/// Returns the state of a feature toggle. Each call reads it again.
PLATFORM_API bool getToggleState(std::string_view toggle, std::string_view file, bool fallback);
