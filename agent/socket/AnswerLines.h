#pragma once

#include <cstddef>
#include <string>

#include "agent/service/Service.h"

/// The answers to the lines of a client on a socket, besides their output.
namespace QosAgent {

/// Returns `{"refused":{"line":N,"column":C,"message":"…"}}` and a line end.
std::string refusedLine(std::size_t line, const Remark& refused);
/// Returns the line for a warning.
std::string warningLine(std::size_t line, const Remark& warning);

}  // namespace QosAgent
