#pragma once

#include <string>

#include "agent/database/Database.h"
#include "agent/output/OutputFormat.h"
#include "agent/output/Terminal.h"

namespace QosAgent {

/// Returns the text that `--output` prints at the end, without the last line end. Precondition: the
/// format is not `none`.
std::string resultText(OutputFormat format, const Database& database, const Terminal& terminal);

}  // namespace QosAgent
