#pragma once

#include <string_view>

#include "agent/service/Service.h"

namespace QosAgent {

/// If a line that a service sent is a refusal or a warning, enters it into the answer and returns
/// true.
bool takeRemark(std::string_view line, Answer& answer);

}  // namespace QosAgent
