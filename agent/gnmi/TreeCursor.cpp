#include <algorithm>

#include "agent/gnmi/Notice.h"
#include "agent/gnmi/Tree.h"
#include "agent/json/JsonWriter.h"

namespace QosAgent::Gnmi {

namespace {

/// The key of an entry that only the state has, as the value of its key leaf.
std::string keyAsJson(const SchemaNode& leaf, const std::string& key) {
    if (leaf.type() != "string") return key;
    std::string json;
    appendQuoted(json, key);
    return json;
}

}  // namespace

TreeCursor::TreeCursor(const Tree& tree, const Query& query)
    : tree_(tree), stateLeaves_(1), node_(&schemaRoot()) {
    frames_.push_back({&schemaRoot(), false, tree.config, Match::start(query), 0, {}, {}, {}, {}});
}

TreeCursor::TreeCursor(const Tree& tree, const Query& query, const DataPath& start)
    : tree_(tree), keys_(start.keys), stateLeaves_(1), node_(start.node) {
    Match match = Match::start(query);
    auto key = start.keys.begin();
    for (const SchemaNode* node : start.node->chain())
        match = match.step(*node, node->isList() ? &*key++ : nullptr);
    stateLeaves_.push_back(tree.stateLeaves(entryOf(start)));
    if (match.isPossible())
        frames_.push_back(
            {start.node, false, tree.configOf(start), std::move(match), 0, {}, {}, {}, {}});
}

TreeCursor::Event TreeCursor::next() {
    if (!isStarted_ && !frames_.empty()) {
        isStarted_ = true;
        isInside_ = frames_.back().match.isInside();
        return Event::enter;
    }
    while (!frames_.empty()) {
        Frame& frame = frames_.back();
        if (frame.isEntries) {
            if (nextEntry()) return Event::enter;
            frames_.pop_back();
        } else if (frame.next == frame.node->children().size()) {
            return leave();
        } else {
            const SchemaNode& child = *frame.node->children()[frame.next++];
            if (child.isLeaf() ? visitLeaf(child) : visitChild(child))
                return child.isLeaf() ? Event::leaf : Event::enter;
        }
    }
    return Event::end;
}

TreeCursor::Event TreeCursor::leave() {
    const Frame& frame = frames_.back();
    node_ = frame.node;
    isInside_ = frame.match.isInside();
    // The keys of the entry that is left still belong to the event; `nextEntry` removes its own.
    if (frame.node->isList()) stateLeaves_.pop_back();
    frames_.pop_back();
    return Event::leave;
}

bool TreeCursor::visitLeaf(const SchemaNode& leaf) {
    const Frame& frame = frames_.back();
    if (!leaf.isServed() && leaf.side() == Side::state) return false;
    if (!frame.match.isLeafMeant(leaf)) return false;
    if (leaf.side() == Side::state) {
        const auto& leaves = stateLeaves_.back();
        const auto at = std::find_if(leaves.begin(), leaves.end(),
                                     [&](const LeafValue& value) { return value.leaf == &leaf; });
        if (at == leaves.end()) return false;
        json_ = at->json;
    } else if (const ConfigView config = frame.config.child(leaf)) {
        json_ = config.json();
    } else if (leaf.side() == Side::key) {
        json_ = keyAsJson(leaf, keys_.back());
    } else {
        return false;
    }
    node_ = &leaf;
    isInside_ = true;
    return true;
}

bool TreeCursor::visitChild(const SchemaNode& child) {
    const Frame& frame = frames_.back();
    const ConfigView config = frame.config.child(child);
    if (!config && !stateHoldsBelow(child)) return false;
    if (child.isList()) {
        Match match = frame.match;
        frames_.push_back({&child, true, config, std::move(match), 0, {}, {}, {}, {}});
        visitEntries();
        return false;
    }
    Match match = frame.match.step(child, nullptr);
    if (!match.isPossible()) return false;
    node_ = &child;
    isInside_ = match.isInside();
    frames_.push_back({&child, false, config, std::move(match), 0, {}, {}, {}, {}});
    return true;
}

/// Prepares the walk of a list's entries: by key where the request names keys.
void TreeCursor::visitEntries() {
    Frame& frame = frames_.back();
    keys_.emplace_back();
    frame.exact = frame.match.exactKeys(*frame.node);
    if (!frame.exact) frame.entries = frame.config.entries();
}

bool TreeCursor::nextEntry() {
    Frame& frame = frames_.back();
    const SchemaNode& list = *frame.node;
    if (frame.exact) {
        while (frame.next < frame.exact->size()) {
            const std::string key((*frame.exact)[frame.next++]);
            if (visitEntry(key, frame.config.entry(key))) return true;
        }
    } else {
        while (!frame.entries->isAtEnd()) {
            const std::string key = frame.entries->key();
            const ConfigView entry = **frame.entries;
            ++*frame.entries;
            if (visitEntry(key, entry)) return true;
        }
        const std::vector<std::string> around(keys_.begin(), keys_.end() - 1);
        while (auto key = tree_.state.nextKey(list, around,
                                              frame.lastOfState ? &*frame.lastOfState : nullptr)) {
            frame.lastOfState = key;
            if (!frame.config.entry(*key) && visitEntry(*key, {})) return true;
        }
    }
    keys_.pop_back();
    return false;
}

bool TreeCursor::visitEntry(const std::string& key, ConfigView config) {
    const SchemaNode& list = *frames_.back().node;
    Match match = frames_.back().match.step(list, &key);
    if (!match.isPossible()) return false;
    keys_.back() = key;
    const DataPath entry{&list, keys_};
    const bool hasState = match.wants(Side::state) && tree_.state.hasEntry(entry);
    if (!config && !hasState) return false;
    node_ = &list;
    isInside_ = match.isInside();
    stateLeaves_.push_back(tree_.stateLeaves(entry));
    frames_.push_back({&list, false, config, std::move(match), 0, {}, {}, {}, {}});
    return true;
}

bool TreeCursor::stateHoldsBelow(const SchemaNode& node) const {
    if (StateSource::canHoldEntries(node)) return true;
    const auto& leaves = stateLeaves_.back();
    return std::any_of(leaves.begin(), leaves.end(),
                       [&](const LeafValue& value) { return value.leaf->isAtOrBelow(node); });
}

}  // namespace QosAgent::Gnmi
