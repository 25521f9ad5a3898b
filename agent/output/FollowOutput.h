#pragma once

#include <optional>
#include <string_view>

#include "agent/output/ChangeText.h"
#include "agent/output/Output.h"

namespace QosAgent {

/// How followed changes are written: as change-stream lines, or as short lines for people.
enum class FollowForm { json, text };

/// Writes followed changes, which it takes as change-stream lines, in one of the forms. Knows
/// nothing of the database, so that a client of another agent can use it too.
class FollowOutput {
public:
    /// The output must outlive this object.
    FollowOutput(Output& output, FollowForm form);

    /// Returns whether the writer needs to know the state of the beginning.
    bool needsState() const { return text_.has_value(); }
    /// Sets the state of the beginning, as `print` `state` writes it.
    void stateIs(std::string_view state);
    /// Writes a change, or any other line as it is.
    void line(std::string_view line);

private:
    Output& output_;
    std::optional<ChangeText> text_;  ///< absent: JSON
};

}  // namespace QosAgent
