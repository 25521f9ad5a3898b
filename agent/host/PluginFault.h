#pragma once

#include <functional>
#include <optional>
#include <string>

namespace QosAgent {

/// Runs code of a plug-in, and returns what that throws in words: its text, or its type where it
/// has none. The exception is destroyed before the function returns, since its code may lie in the
/// library that the caller closes next. Throws `std::bad_alloc` when memory runs out.
std::optional<std::string> faultOfPlugin(const std::function<void()>& code);

}  // namespace QosAgent
