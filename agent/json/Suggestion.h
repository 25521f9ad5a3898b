#pragma once

#include <span>
#include <string>
#include <string_view>

namespace QosAgent {

/// Returns `, did you mean "NAME"?` with the nearest known name that differs from `wrong` by typing
/// errors or case; empty if none is near. Takes the first of several equally near ones.
std::string suggestion(std::string_view wrong, std::span<const std::string_view> known);

}  // namespace QosAgent
