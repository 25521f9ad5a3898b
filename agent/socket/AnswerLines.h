#pragma once

#include <cstddef>
#include <string>

#include "agent/service/Service.h"

/// What a client on a socket is told of its lines, besides what they print.
namespace QosAgent {

/// `{"refused":{"line":N,"column":C,"message":"…"}}` and a line end.
std::string refusedLine(std::size_t line, const Remark& refused);
/// The same for a warning.
std::string warningLine(std::size_t line, const Remark& warning);

}  // namespace QosAgent
