#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "agent/loop/Loop.h"
#include "agent/service/Service.h"

namespace QosAgent {

/// A commit that waits for its confirmation.
struct WaitingCommit {
    std::string id;
    std::string before;                         ///< the configuration to go back to
    std::chrono::system_clock::time_point end;  ///< when it is taken back

    friend bool operator==(const WaitingCommit&, const WaitingCommit&) = default;
};

/// Applies requests, and takes a commit back that is not confirmed in time. While one waits, no
/// other request may edit the OpenConfig configuration. Event thread only.
class ConfirmedCommits {
public:
    using Apply = std::function<Answer(Request)>;
    /// Gets the commit that waits from now on, null when none does any more.
    using Keep = std::function<void(const WaitingCommit* waiting)>;

    /// `apply` applies a request as it is. The loop must outlive this object.
    ConfirmedCommits(Loop& loop, Apply apply) : loop_(loop), apply_(std::move(apply)) {}

    /// From now on `keep` is called whenever a commit begins to wait, gets another time, or is
    /// settled, after the request that did it, so that a store can keep it over a restart.
    void keeperIs(Keep keep) { keep_ = std::move(keep); }
    /// Goes on with a commit that waited when the program ended before: one whose time is over is
    /// taken back at once. The caller must call it before any request.
    void resume(WaitingCommit commit);

    Answer apply(Request request);

private:
    struct Waiting {
        WaitingCommit commit;
        Loop::SourcePtr timer;
    };

    Answer begin(Request request);
    Answer takeBack();
    void startTimer(std::chrono::milliseconds time);
    void settle();
    void keep() const;
    std::optional<Answer> refusal(const CommitAction& action) const;

    Loop& loop_;
    Apply apply_;
    Keep keep_;
    std::optional<Waiting> waiting_;
};

}  // namespace QosAgent
