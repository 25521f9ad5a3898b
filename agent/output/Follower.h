#pragma once

#include "agent/feed/Feed.h"
#include "agent/output/Output.h"

namespace QosAgent {

/// Prints each published change as a change-stream line, from construction to destruction.
class Follower : private ChangeListener {
public:
    /// Feed and output must outlive the follower.
    Follower(Feed& feed, Output& output) : feed_(feed), output_(output) { feed_.listenerIs(*this); }
    ~Follower() override { feed_.listenerDel(*this); }
    Follower(const Follower&) = delete;
    Follower& operator=(const Follower&) = delete;

private:
    void changed(const Change& change) override { output_.line(change.line()); }

    Feed& feed_;
    Output& output_;
};

}  // namespace QosAgent
