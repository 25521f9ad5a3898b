#pragma once

#include "agent/feed/Feed.h"
#include "agent/output/FollowOutput.h"

namespace QosAgent {

/// Prints each published change, from construction to destruction.
class Follower : private ChangeListener {
public:
    /// Prints change-stream lines. Feed and output must outlive the follower.
    Follower(Feed& feed, Output& output) : Follower(feed, FollowOutput(output, FollowForm::json)) {}
    /// Prints changes in this form; `state` is the initial state tree.
    Follower(Feed& feed, Output& output, FollowForm form, const Subtree& state);
    ~Follower() override { feed_.listenerDel(*this); }
    Follower(const Follower&) = delete;
    Follower& operator=(const Follower&) = delete;

private:
    Follower(Feed& feed, FollowOutput output);

    void changed(const Change& change) override { output_.line(change.line()); }

    Feed& feed_;
    FollowOutput output_;
};

}  // namespace QosAgent
