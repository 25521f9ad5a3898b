#pragma once

namespace QosAgent {

/// What is printed at the end: `--output`.
enum class OutputFormat { table, openconfig, entities, none };

}  // namespace QosAgent
