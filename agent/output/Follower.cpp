#include "agent/output/Follower.h"

#include <string>
#include <utility>

#include "agent/database/Printer.h"

namespace QosAgent {
namespace {

FollowOutput outputOver(Output& output, FollowForm form, const Subtree& state) {
    FollowOutput followed(output, form);
    if (!followed.needsState()) return followed;
    std::string text;
    JsonWriter writer(text);
    writeEntity(writer, *state.root);
    followed.stateIs(text);
    return followed;
}

}  // namespace

Follower::Follower(Feed& feed, Output& output, FollowForm form, const Subtree& state)
    : Follower(feed, outputOver(output, form, state)) {}

Follower::Follower(Feed& feed, FollowOutput output) : feed_(feed), output_(std::move(output)) {
    feed_.listenerIs(*this);
}

}  // namespace QosAgent
