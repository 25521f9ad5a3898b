#include "agent/gnmi/Pattern.h"

#include <algorithm>
#include <set>

#include "agent/json/Excerpt.h"

namespace QosAgent::Gnmi {

namespace {

constexpr std::string_view kModulePrefix = "openconfig-qos:";

using Nodes = std::vector<const SchemaNode*>;

std::size_t bytesOf(const PathElement& element) {
    std::size_t bytes = element.name.size();
    for (const auto& [name, value] : element.keys)
        bytes += name.size() + value.size();
    return bytes;
}

/// What is wrong with an element, whatever the model; empty if nothing is.
std::string_view malformation(const PathElement& element) {
    if (element.name.empty()) return "an element without a name";
    if (bytesOf(element) > kMostElementBytes) return "an element of more than 1024 bytes";
    if (element.name == kAnyDescent && !element.keys.empty()) return "\"...\" with a key";
    return {};
}

std::optional<Refusal> checkForm(const RequestPath& path) {
    if (path.elements.size() > kMostPathElements)
        return Refusal{Code::invalidArgument, shown(path) + ": a path of more than 32 elements"};
    for (const PathElement& element : path.elements)
        if (const auto wrong = malformation(element); !wrong.empty())
            return Refusal{Code::invalidArgument, shown(path) + ": " + std::string(wrong)};
    return std::nullopt;
}

void addAllBelow(const SchemaNode& node, std::set<const SchemaNode*>& nodes) {
    nodes.insert(&node);
    for (const auto& child : node.children())
        addAllBelow(*child, nodes);
}

bool hasKeysOf(const SchemaNode& node, const PathElement& element) {
    return std::all_of(element.keys.begin(), element.keys.end(),
                       [&](const auto& key) { return node.isList() && key.first == node.key(); });
}

/// The nodes of the model that a path to one of `nodes` and then `element` can mean.
Nodes nodesAfter(const Nodes& nodes, const PathElement& element) {
    std::set<const SchemaNode*> found;
    for (const SchemaNode* node : nodes) {
        if (element.name == kAnyDescent) addAllBelow(*node, found);
        for (const auto& child : node->children())
            if ((element.name == kAnyName || element.name == child->name()) &&
                hasKeysOf(*child, element))
                found.insert(child.get());
    }
    return {found.begin(), found.end()};
}

Refusal withoutSuchNode(const RequestPath& path, const PathElement& element, const Nodes& parents) {
    for (const SchemaNode* parent : parents) {
        const SchemaNode* child = parent->child(element.name);
        if (child == nullptr) continue;
        const std::string keys = child->isList() ? "its key is \"" + std::string(child->key()) + '"'
                                                 : std::string("it is no list");
        return {Code::invalidArgument,
                shown(path) + ": wrong key of \"" + element.name + "\": " + keys};
    }
    return {Code::unimplemented, shown(path) + ": the served model, " + std::string(kModelName) +
                                     ", has no " + excerpt(element.name)};
}

std::optional<Refusal> checkModel(const RequestPath& path) {
    Nodes nodes{&schemaRoot()};
    for (const PathElement& element : path.elements) {
        Nodes next = nodesAfter(nodes, element);
        if (next.empty()) return withoutSuchNode(path, element, nodes);
        nodes = std::move(next);
    }
    return std::nullopt;
}

/// The key that the element names; null where every key will do.
const std::string* exactKey(const PathElement& element) {
    if (element.keys.empty()) return nullptr;
    const std::string& value = element.keys.begin()->second;
    return value == kAnyKey ? nullptr : &value;
}

bool meansName(const PathElement& element, const SchemaNode& node) {
    return (element.name == kAnyName || element.name == node.name()) && hasKeysOf(node, element);
}

}  // namespace

OrRefusal<Pattern> Pattern::of(RequestPath path) {
    if (const auto wrong = checkForm(path)) return *wrong;
    for (PathElement& element : path.elements)
        if (element.name.starts_with(kModulePrefix)) element.name.erase(0, kModulePrefix.size());
    if (const auto wrong = checkForm(path)) return *wrong;
    if (const auto wrong = checkModel(path)) return *wrong;
    return Pattern(std::move(path));
}

Pattern::State Pattern::closed(State state) const {
    for (std::size_t at = 0; at < path_.elements.size(); ++at)
        if ((state >> at & 1) != 0 && path_.elements[at].name == kAnyDescent)
            state |= State{2} << at;
    return state;
}

Pattern::State Pattern::step(State state, const SchemaNode& child, const std::string* key) const {
    State next = 0;
    for (std::size_t at = 0; at < path_.elements.size(); ++at) {
        if ((state >> at & 1) == 0) continue;
        const PathElement& element = path_.elements[at];
        if (element.name == kAnyDescent) {
            next |= State{1} << at;
        } else if (meansName(element, child)) {
            const std::string* exact = exactKey(element);
            if (exact == nullptr || (key != nullptr && *exact == *key)) next |= State{2} << at;
        }
    }
    return closed(next);
}

std::optional<std::vector<std::string_view>> Pattern::exactKeys(State state,
                                                                const SchemaNode& list) const {
    std::vector<std::string_view> keys;
    for (std::size_t at = 0; at < path_.elements.size(); ++at) {
        const PathElement& element = path_.elements[at];
        if ((state >> at & 1) == 0) continue;
        if (element.name == kAnyDescent) return std::nullopt;
        if (!meansName(element, list)) continue;
        const std::string* exact = exactKey(element);
        if (exact == nullptr) return std::nullopt;
        keys.emplace_back(*exact);
    }
    return keys;
}

bool Pattern::hasWildcards() const {
    const SchemaNode* node = &schemaRoot();
    for (const PathElement& element : path_.elements) {
        if (element.name == kAnyName || element.name == kAnyDescent) return true;
        node = node->child(element.name);
        if (node->isList() && exactKey(element) == nullptr) return true;
    }
    return false;
}

}  // namespace QosAgent::Gnmi
