#include "agent/openconfig/ModelNode.h"

#include <algorithm>
#include <vector>

#include "agent/database/Scalars.h"
#include "agent/json/Excerpt.h"
#include "agent/json/Suggestion.h"

namespace QosAgent {
namespace {

constexpr std::string_view kPrefix = "openconfig-qos:";
constexpr std::string_view kState = "state";

/// A member's name in the model. That of another module keeps its prefix.
std::string_view localName(std::string_view name) {
    return name.starts_with(kPrefix) ? name.substr(kPrefix.size()) : name;
}

bool hasPrefix(const JsonMember& member) {
    return member.key.starts_with(kPrefix);
}

/// The names of an object's members that have no prefix, ascending; none if no member has one.
std::vector<std::string_view> plainNames(const JsonValue& object) {
    std::vector<std::string_view> names;
    const auto members = object.members();
    if (std::none_of(members.begin(), members.end(), hasPrefix)) return names;
    for (const JsonMember& member : members)
        if (!hasPrefix(member)) names.push_back(member.key);
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace

bool holdsNothing(const JsonValue& value) {
    if (value.is(JsonKind::array)) return value.size() == 0;
    if (!value.is(JsonKind::object)) return false;
    const auto members = value.members();
    return std::all_of(members.begin(), members.end(),
                       [](const JsonMember& member) { return holdsNothing(member.value); });
}

void ModelNode::carries(std::initializer_list<std::string_view> names) const {
    const std::vector<std::string_view> plain = plainNames(json_);
    for (const JsonMember& member : json_.members()) {
        const std::string_view name = localName(member.key);
        if (hasPrefix(member) && std::binary_search(plain.begin(), plain.end(), name))
            findings_.refuse(member.keyOffset, "a second member " + excerpt(name));
        if (std::find(names.begin(), names.end(), name) != names.end()) continue;
        if (holdsNothing(member.value)) continue;
        if (name == kState) {
            findings_.passOverState(member.keyOffset);
            continue;
        }
        if (Warning* first = findings_.passOver(member.keyOffset, pathOf(name)))
            first->message += suggestion(name, {names.begin(), names.size()});
    }
}

std::optional<JsonMember> ModelNode::member(std::string_view name) const {
    for (const JsonMember& member : json_.members())
        if (localName(member.key) == name) return member;
    return {};
}

std::optional<JsonValue> ModelNode::valueOf(std::string_view name, JsonKind kind,
                                            std::string_view wanted) const {
    const auto found = member(name);
    if (!found) return {};
    if (found->value.is(kind)) return found->value;
    findings_.refuse(found->value.offset(), unexpected(wanted, found->value.kind()));
    return {};
}

std::optional<JsonValue> ModelNode::text(std::string_view name) const {
    return valueOf(name, JsonKind::string, "a string");
}

std::optional<JsonValue> ModelNode::list(std::string_view name) const {
    return valueOf(name, JsonKind::array, "a list");
}

std::optional<ModelNode> ModelNode::container(std::string_view name) const {
    const auto found = member(name);
    if (!found) return {};
    const ModelNode node(this, name, found->value, findings_);
    if (!node.isObject()) return {};
    return node;
}

std::optional<JsonValue> ModelNode::listKey(std::string_view name,
                                            const std::optional<ModelNode>& config) const {
    if (!member(name)) {
        findings_.refuse(offset(), "the list key " + excerpt(name) + " is missing");
        return {};
    }
    const auto key = text(name);
    if (!key) return {};
    // A `config` that is no container has been refused.
    if (!config && member("config")) return key;
    if (!config || !config->member(name)) {
        findings_.refuse(key->offset(), "no member " + excerpt("config/" + std::string(name)) +
                                            " repeats the list key");
    } else if (const auto repeated = config->text(name);
               repeated && repeated->text() != key->text()) {
        findings_.refuse(repeated->offset(),
                         "differs from the list key, which is " + excerpt(key->text()));
    }
    return key;
}

std::optional<JsonValue> ModelNode::listName(std::string_view name,
                                             const std::optional<ModelNode>& config) const {
    const auto key = listKey(name, config);
    if (key && key->text().empty()) findings_.refuse(key->offset(), "an empty name");
    return key;
}

bool ModelNode::isObject() const {
    if (json_.is(JsonKind::object)) return true;
    findings_.refuse(offset(), unexpected("an object", json_.kind()));
    return false;
}

std::string ModelNode::pathOf(std::string_view memberName) const {
    std::string path(memberName);
    for (const ModelNode* node = this; node->parent_ != nullptr; node = node->parent_)
        path.insert(0, std::string(node->name_) + '/');
    return path;
}

}  // namespace QosAgent
