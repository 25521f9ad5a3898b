#include "agent/gnmi/Query.h"

#include <algorithm>

namespace QosAgent::Gnmi {

bool Query::wants(Side side) const {
    switch (side) {
        case Side::key:
            return wantsKeys;
        case Side::config:
            return wantsConfig;
        case Side::state:
            return wantsState;
        case Side::none:
            break;
    }
    return true;
}

Match Match::start(const Query& query) {
    Match match(query);
    match.states_.reserve(query.patterns.size());
    for (const Pattern& pattern : query.patterns)
        match.states_.push_back(pattern.start());
    match.update(0);
    return match;
}

Match Match::step(const SchemaNode& child, const std::string* key) const {
    Match match(*query_);
    match.depth_ = depth_ + 1;
    match.matchedDepth_ = matchedDepth_;
    match.states_.reserve(states_.size());
    for (std::size_t at = 0; at < states_.size(); ++at)
        match.states_.push_back(query_->patterns[at].step(states_[at], child, key));
    match.update(match.depth_);
    return match;
}

/// Notes whether a path names the node.
void Match::update(std::size_t depth) {
    for (std::size_t at = 0; at < states_.size(); ++at)
        if (query_->patterns[at].accepts(states_[at])) matchedDepth_ = depth;
    // Without a limit of depth, all below a matched node is meant, whatever else the paths say.
    if (matchedDepth_ && query_->depth == 0) states_.clear();
}

bool Match::isPossible() const {
    if (matchedDepth_ && (query_->depth == 0 || depth_ - *matchedDepth_ < query_->depth))
        return true;
    return std::any_of(states_.begin(), states_.end(), [](auto state) { return state != 0; });
}

bool Match::isLeafMeant(const SchemaNode& leaf) const {
    if (!query_->wants(leaf.side())) return false;
    if (matchedDepth_ && query_->depth == 0) return true;
    const Match at = step(leaf, nullptr);
    return at.matchedDepth_ &&
           (query_->depth == 0 || at.depth_ - *at.matchedDepth_ <= query_->depth);
}

std::optional<std::vector<std::string_view>> Match::exactKeys(const SchemaNode& list) const {
    if (isInside() && (query_->depth == 0 || depth_ - *matchedDepth_ < query_->depth))
        return std::nullopt;
    std::vector<std::string_view> all;
    for (std::size_t at = 0; at < states_.size(); ++at) {
        const auto keys = query_->patterns[at].exactKeys(states_[at], list);
        if (!keys) return std::nullopt;
        all.insert(all.end(), keys->begin(), keys->end());
    }
    std::sort(all.begin(), all.end());
    all.erase(std::unique(all.begin(), all.end()), all.end());
    return all;
}

bool isMeant(const Query& query, const DataPath& leaf) {
    Match match = Match::start(query);
    auto key = leaf.keys.begin();
    for (const SchemaNode* node : leaf.node->chain()) {
        if (node->isLeaf()) return match.isLeafMeant(*node);
        match = match.step(*node, node->isList() ? &*key++ : nullptr);
        if (!match.isPossible()) return false;
    }
    return false;
}

}  // namespace QosAgent::Gnmi
