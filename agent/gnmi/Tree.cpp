#include "agent/gnmi/Tree.h"

#include <algorithm>

#include "agent/gnmi/Notice.h"
#include "agent/gnmi/Values.h"

namespace QosAgent::Gnmi {

namespace {

void addConfigLeaves(std::vector<LeafValue>& leaves, const SchemaNode& node,
                     const ConfigView& config) {
    if (!config) return;
    for (const auto& child : node.children()) {
        if (child->isList() || child->side() == Side::key || child->side() == Side::state) continue;
        const ConfigView below = config.child(*child);
        if (!below) continue;
        if (child->isLeaf())
            leaves.push_back({child.get(), below.json()});
        else
            addConfigLeaves(leaves, *child, below);
    }
}

/// Whether a leaf of the model is at or below a node of the configuration.
bool holdsLeaf(const SchemaNode& node, const ConfigView& config) {
    if (!config) return false;
    if (node.isLeaf()) return node.side() == Side::config;
    return std::any_of(node.children().begin(), node.children().end(), [&](const auto& child) {
        const ConfigView below = config.child(*child);
        if (!child->isList() || !below) return holdsLeaf(*child, below);
        for (auto entry = below.entries(); !entry.isAtEnd(); ++entry)
            if (holdsLeaf(*child, *entry)) return true;
        return false;
    });
}

const SchemaNode& attachmentList() {
    static const SchemaNode& list =
        schemaNode("/qos/interfaces/interface/input/classifiers/classifier");
    return list;
}

/// The configured name of the classifier of that type, of an interface's attachments; none if there
/// is no such attachment.
ConfigView attachedName(const ConfigView& attachments, std::string_view type) {
    static const SchemaNode* const name = attachmentList().child("config")->child("name");
    return attachments.entry(type).child(*name->parent()).child(*name);
}

std::string textOf(const ConfigView& name) {
    static const SchemaNode* const leaf = attachmentList().child("config")->child("name");
    return name ? std::get<std::string>(scalarOf(name.json(), *leaf)) : std::string();
}

/// An attached classifier has a state while the policy map exists that applies the interface's
/// attachments. `attachments` is the interface's list of them.
std::vector<LeafValue> attachmentLeaves(std::string_view type, const ConfigView& attachments,
                                        const PolicyMapNames& policyMaps) {
    static const SchemaNode& state = *attachmentList().child("state");
    if (type != "IPV4" && type != "IPV6") return {};
    const ConfigView name = attachedName(attachments, type);
    if (!name) return {};
    const std::string ipv4 = textOf(attachedName(attachments, "IPV4"));
    const std::string ipv6 = textOf(attachedName(attachments, "IPV6"));
    if (!policyMaps.containsOfPair(ipv4, ipv6)) return {};
    return {{state.child("name"), name.json()},
            {state.child("type"), '"' + std::string(type) + '"'}};
}

bool stateHolds(const Tree& tree, const DataPath& node) {
    const StateSource& state = tree.state;
    const auto leaves = tree.stateLeaves(entryOf(node));
    if (std::any_of(leaves.begin(), leaves.end(),
                    [&](const LeafValue& value) { return value.leaf->isAtOrBelow(*node.node); }))
        return true;
    if (node.node == &classifierList()) return state.hasEntry(node);
    if (!StateSource::canHoldEntries(*node.node) || node.node->isList()) return false;
    const SchemaNode& list =
        node.node->isAtOrBelow(classifierList()) ? termList() : classifierList();
    return state.nextKey(list, node.keys, nullptr).has_value();
}

}  // namespace

ConfigView Tree::configOf(const DataPath& node) const {
    ConfigView view = config;
    auto key = node.keys.begin();
    for (const SchemaNode* step : node.node->chain()) {
        view = view.child(*step);
        if (step->isList()) view = view.entry(*key++);
    }
    return view;
}

std::vector<LeafValue> Tree::stateLeaves(const DataPath& entry) const {
    if (entry.node != &attachmentList()) return state.leaves(entry);
    const std::vector<std::string> interface(entry.keys.begin(), entry.keys.end() - 1);
    const ConfigView attachments =
        configOf({attachmentList().parent(), interface}).child(attachmentList());
    return attachmentLeaves(entry.keys.back(), attachments, policyMaps);
}

bool Tree::holds(const DataPath& node) const {
    return holdsLeaf(*node.node, configOf(node)) || stateHolds(*this, node);
}

std::vector<LeafValue> Tree::leaves(const DataPath& entry) const {
    std::vector<LeafValue> leaves = stateLeaves(entry);
    addConfigLeaves(leaves, *entry.node, configOf(entry));
    std::sort(leaves.begin(), leaves.end(), [&](const LeafValue& a, const LeafValue& b) {
        return DataPathOrder()({a.leaf, entry.keys}, {b.leaf, entry.keys});
    });
    return leaves;
}

}  // namespace QosAgent::Gnmi
