#pragma once

#include <functional>
#include <optional>
#include <string>

namespace QosAgent {

/// Runs code of a plug-in. If the code throws, returns the exception's text, or its type if it has
/// no text. The exception is destroyed before the function returns, because its code may be in the
/// library that the caller closes next. Throws `std::bad_alloc` if memory runs out.
std::optional<std::string> faultOfPlugin(const std::function<void()>& code);

}  // namespace QosAgent
