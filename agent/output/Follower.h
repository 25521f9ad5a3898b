#pragma once

#include <memory>

#include "agent/database/Database.h"
#include "agent/output/Output.h"

namespace QosAgent {

class FollowedEntity;

/// Prints each change of a subtree as a change-stream line, from construction to destruction: an
/// `update` with the whole value, or a `delete`. What is there at the beginning is no change.
class Follower {
public:
    /// The output outlives the follower.
    Follower(const Subtree& subtree, Output& output);
    ~Follower();

private:
    std::unique_ptr<FollowedEntity> root_;
};

}  // namespace QosAgent
