#pragma once

#include <functional>
#include <optional>
#include <string>

#include "agent/loop/Loop.h"
#include "agent/service/Service.h"

namespace QosAgent {

/// Applies requests, and takes a commit back that is not confirmed in time. While one waits, no
/// other request may edit the OpenConfig configuration. Event thread only.
class ConfirmedCommits {
public:
    using Apply = std::function<Answer(Request)>;

    /// `apply` applies a request as it is. The loop must outlive this object.
    ConfirmedCommits(Loop& loop, Apply apply) : loop_(loop), apply_(std::move(apply)) {}

    Answer apply(Request request);

private:
    struct Waiting {
        std::string id;
        std::string before;  ///< the configuration to go back to
        Loop::SourcePtr timer;
    };

    Answer begin(Request request);
    Answer takeBack();
    void startTimer(std::chrono::milliseconds time);
    std::optional<Answer> refusal(const CommitAction& action) const;

    Loop& loop_;
    Apply apply_;
    std::optional<Waiting> waiting_;
};

}  // namespace QosAgent
