#pragma once

namespace QosAgent {

/// The format of `--output`.
enum class OutputFormat { table, openconfig, entities, none };

}  // namespace QosAgent
