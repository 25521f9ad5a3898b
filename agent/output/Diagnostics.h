#pragma once

#include <string>
#include <string_view>

#include "agent/json/JsonReader.h"
#include "agent/json/TextPlace.h"

/// The lines for standard error. `file` is as it was named on the command line.
namespace QosAgent {

/// `FILE: MESSAGE`, on one line whatever they hold.
std::string refusal(std::string_view file, std::string_view message);
/// `FILE:LINE:COLUMN: MESSAGE`.
std::string refusal(std::string_view file, const TextPlace& place, std::string_view message);
/// The same for a fault in a text.
std::string refusal(std::string_view file, std::string_view text, const Fault& fault);

/// `FILE:LINE:COLUMN: warning: MESSAGE`.
std::string warningLine(std::string_view file, const TextPlace& place, std::string_view message);

/// Writes one line to standard error.
void report(std::string_view line);

}  // namespace QosAgent
