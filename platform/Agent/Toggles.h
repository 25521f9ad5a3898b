#pragma once

#include <functional>
#include <string_view>

#include "platform/Orin/Export.h"

namespace Agent {

/// Reads a toggle from its file; `fallback` where it says nothing of the toggle.
using ToggleReader =
    std::function<bool(std::string_view toggle, std::string_view file, bool fallback)>;

/// Installs what reads toggle files: the agent's part, since it knows where they are and how they
/// are written. Null: every toggle reads as its fallback.
PLATFORM_API void toggleReaderIs(ToggleReader reader);

}  // namespace Agent

/// Returns the state of a feature toggle, read anew at every call.
PLATFORM_API bool getToggleState(std::string_view toggle, std::string_view file, bool fallback);
