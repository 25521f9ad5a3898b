#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace QosAgent {

/// Returns the message for a command line that the library refused: the library's own, or a clearer
/// one for unknown options and wrong numbers of values.
std::string messageOf(const CLI::ParseError& refused, const CLI::App& app);

}  // namespace QosAgent
