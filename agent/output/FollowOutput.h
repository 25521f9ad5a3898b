#pragma once

#include <optional>
#include <string_view>

#include "agent/output/ChangeText.h"
#include "agent/output/Output.h"

namespace QosAgent {

/// The form of followed changes: change-stream lines, or short lines for people.
enum class FollowForm { json, text };

/// Takes followed changes as change-stream lines and writes them in one of the forms. Does not use
/// the database, so that a client of another agent can use it, too.
class FollowOutput {
public:
    /// The output must outlive this object.
    FollowOutput(Output& output, FollowForm form);

    /// Returns true if the writer needs the initial state.
    bool needsState() const { return text_.has_value(); }
    /// Sets the initial state, as `print` `state` writes it.
    void stateIs(std::string_view state);
    /// Writes a change; writes any other line unchanged.
    void line(std::string_view line);

private:
    Output& output_;
    std::optional<ChangeText> text_;  ///< absent: JSON
};

}  // namespace QosAgent
