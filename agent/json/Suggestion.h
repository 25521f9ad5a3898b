#pragma once

#include <span>
#include <string>
#include <string_view>

namespace QosAgent {

/// `, did you mean "NAME"?` with the known name of which `wrong` is a slip of the keys or of the
/// case; empty when none is near. The first of several that are equally near.
std::string suggestion(std::string_view wrong, std::span<const std::string_view> known);

}  // namespace QosAgent
