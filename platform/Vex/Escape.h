#pragma once

#include <string>
#include <string_view>

#include "platform/Orin/Export.h"

namespace Vex {

/// Appends `text` with `\` and the characters U+0000 to U+001F and U+007F written as C escapes
/// (`\a \b \t \n \v \f \r \\`, else three octal digits), so that it stays on one line.
PLATFORM_API void appendEscaped(std::string& out, std::string_view text);

}  // namespace Vex
