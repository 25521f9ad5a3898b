#pragma once

#include <cstddef>
#include <string_view>

#include "platform/Orin/String.h"

namespace Orin {

/// Hashes text of any type for the hashed containers of the standard library. Their own hash is the
/// same in each process, so whoever chooses the texts could make them collide.
struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const noexcept { return hashOf(text); }
    std::size_t operator()(const String& text) const noexcept { return text.hash(); }
};

}  // namespace Orin
