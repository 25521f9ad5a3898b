#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "agent/gnmi/Refusal.h"
#include "agent/gnmi/Tree.h"
#include "agent/service/Service.h"

namespace gnmi {
class SetRequest;
class SetResponse;
}  // namespace gnmi

namespace QosAgent::Gnmi {

/// A Set as one operation of a change stream.
struct Edits {
    /// The line of a `configure` operation; empty if there is nothing to edit.
    std::string line;
    /// A `delete` has wildcards: the edits are those of the configuration that was given.
    bool hasWildcards = false;
    /// The path of each edit, in order, for messages.
    std::vector<std::string> paths;
    /// What the extension asks for.
    std::optional<CommitAction> commit;
};

/// Checks a Set as far as the model alone tells, and translates it. Wildcards in `delete` are
/// expanded over the configuration of `tree`.
OrRefusal<Edits> editsOf(const gnmi::SetRequest& request, const Tree& tree);

/// Fills the answer to a Set that was applied.
void answer(const gnmi::SetRequest& request, std::int64_t timestamp, gnmi::SetResponse& response);

}  // namespace QosAgent::Gnmi
