#include "agent/gnmi/Difference.h"

#include <algorithm>

#include "agent/configuration/ConfigurationTree.h"

namespace QosAgent::Gnmi {

namespace {

/// Nothing above an entry of a list directly below `qos` is ever deleted as a whole.
bool isHighest(const SchemaNode& node) {
    return node.isList() && node.depth() == 3;
}

/// Whether the node is above such entries, if it has any below it.
bool isAboveEntries(const SchemaNode& node) {
    return node.depth() < 3 && !node.isLeaf();
}

/// The highest node that holds nothing any more and has `gone` at or below it; not above `limit`.
DataPath highestEmpty(const Tree& after, DataPath gone, const SchemaNode& limit) {
    while (gone.node != &limit && !isHighest(*gone.node)) {
        DataPath parent = gone.parent();
        if (parent.node->depth() <= 1 || after.holds(parent)) break;
        gone = std::move(parent);
    }
    return gone;
}

/// Makes the notices of one difference.
class Comparison {
public:
    Comparison(const Tree& before, const Tree& after) : before_(before), after_(after) {}

    void compareSubtree(const DataPath& node) {
        if (isDeleted(node)) return;
        if (!isAboveEntries(*node.node) && !after_.holds(node)) {
            if (before_.holds(node)) addDelete(highestEmpty(after_, node, schemaRoot()));
            return;
        }
        for (const Tree* tree : {&before_, &after_})
            addEntriesBelow(*tree, node);
    }

    void compareEntry(const DataPath& entry) {
        if (isDeleted(entry) || !seen_.insert(entry).second) return;
        if (entry.node->isList() && !after_.holds(entry)) {
            if (before_.holds(entry)) addDelete(highestEmpty(after_, entry, schemaRoot()));
            return;
        }
        Notice notice{after_.timestamp, {}, {}};
        compareLeaves(entry, before_.leaves(entry), after_.leaves(entry), notice);
        if (!notice.isEmpty()) notices_.push_back(std::move(notice));
    }

    std::vector<Notice> take() { return std::move(notices_); }

private:
    void addEntriesBelow(const Tree& tree, const DataPath& node) {
        Query all;
        all.patterns.push_back(std::get<Pattern>(Pattern::of({})));
        compareEntry(entryOf(node));
        TreeCursor cursor(tree, all, node);
        for (auto event = cursor.next(); event != TreeCursor::Event::end; event = cursor.next())
            if (event == TreeCursor::Event::enter && cursor.node().isList())
                compareEntry(cursor.path());
    }

    bool isDeleted(const DataPath& node) const {
        DataPath at = node;
        for (; at.node->depth() > 1; at = at.parent())
            if (deleted_.contains(at)) return true;
        return false;
    }

    void addDelete(DataPath node) {
        if (!deleted_.insert(node).second) return;
        notices_.push_back({after_.timestamp, {std::move(node)}, {}});
    }

    void compareLeaves(const DataPath& entry, const std::vector<LeafValue>& before,
                       const std::vector<LeafValue>& after, Notice& notice) {
        for (const LeafValue& value : after)
            if (std::find(before.begin(), before.end(), value) == before.end())
                notice.updates.push_back({{value.leaf, entry.keys}, value.json, 0});
        for (const LeafValue& value : before) {
            const auto isSame = [&](const LeafValue& other) { return other.leaf == value.leaf; };
            if (std::any_of(after.begin(), after.end(), isSame)) continue;
            addGoneLeaf(entry, value, after, notice);
        }
    }

    /// A leaf that leaves alone is deleted alone; where its whole side of the entry leaves, the
    /// highest node that held nothing else is.
    void addGoneLeaf(const DataPath& entry, const LeafValue& gone,
                     const std::vector<LeafValue>& after, Notice& notice) {
        DataPath node{gone.leaf, entry.keys};
        const bool sideStays = std::any_of(after.begin(), after.end(), [&](const LeafValue& value) {
            return value.leaf->side() == gone.leaf->side();
        });
        if (!sideStays) node = highestEmpty(after_, node, *entry.node);
        const auto covers = [&](const DataPath& other) { return node.isAtOrBelow(other); };
        if (std::none_of(notice.deletes.begin(), notice.deletes.end(), covers))
            notice.deletes.push_back(std::move(node));
    }

    const Tree& before_;
    const Tree& after_;
    PathSet seen_;
    PathSet deleted_;
    std::vector<Notice> notices_;
};

bool wasMeant(const DataPath& node, const Query& query, const Tree& before) {
    if (node.node->isLeaf()) return isMeant(query, node);
    TreeCursor cursor(before, query, node);
    for (auto event = cursor.next(); event != TreeCursor::Event::end; event = cursor.next())
        if (event == TreeCursor::Event::leaf) return true;
    return false;
}

/// The node of the served model for a path of the configuration: the nearest above it where the
/// model has no such node.
DataPath dataPathOf(const ModelPath& path) {
    DataPath found{&schemaRoot(), {}};
    for (const QosAgent::PathElement& element : path) {
        const SchemaNode* child = found.node->child(element.name);
        if (child == nullptr || (child->isList() && element.keys.empty())) break;
        found.node = child;
        if (child->isList()) found.keys.push_back(element.keys.front().value);
    }
    return found;
}

}  // namespace

DataPath entryOf(const DataPath& node) {
    DataPath entry = node;
    while (entry.node->depth() > 0 && !entry.node->isList())
        entry = entry.parent();
    return entry;
}

void addTouched(Touched& touched, const ChangeSet& changes) {
    for (const std::string& path : changes.deletes) {
        DataPath entry = entryOfStatePath(path);
        const bool isTerms = path.ends_with("/terms") && entry.node == &classifierList();
        if (isTerms) entry.node = classifierList().child("terms");
        touched.subtrees.insert(std::move(entry));
    }
    for (const ChangeSet::Update& update : changes.updates)
        touched.entries.insert(entryOfStatePath(update.path));
    eachDifference(changes.before.configuration, changes.after.configuration,
                   [&](const ModelPath& path, const auto&, const auto&) {
                       touched.subtrees.insert(dataPathOf(path));
                   });
    // A policy map that comes or goes is the state of all attachments that it applies.
    static const SchemaNode& interfaces = schemaNode("/qos/interfaces");
    if (!changes.before.policyMaps.isSame(changes.after.policyMaps))
        touched.subtrees.insert({&interfaces, {}});
}

std::vector<Notice> difference(const Tree& before, const Tree& after, const Touched& touched) {
    Comparison comparison(before, after);
    for (const DataPath& node : touched.subtrees)
        comparison.compareSubtree(node);
    for (const DataPath& entry : touched.entries)
        comparison.compareEntry(entry);
    return comparison.take();
}

Notice filtered(const Notice& notice, const Query& query, const Tree& before) {
    Notice kept{notice.timestamp, {}, {}};
    for (const DataPath& node : notice.deletes)
        if (wasMeant(node, query, before)) kept.deletes.push_back(node);
    for (const NodeUpdate& update : notice.updates)
        if (isMeant(query, update.path)) kept.updates.push_back(update);
    return kept;
}

}  // namespace QosAgent::Gnmi
