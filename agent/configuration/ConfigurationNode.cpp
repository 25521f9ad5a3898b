#include "agent/configuration/ConfigurationNode.h"

#include <algorithm>
#include <utility>

#include "agent/configuration/ModelPath.h"

namespace QosAgent {
namespace {

constexpr std::string_view kTopMember = "openconfig-qos:qos";

bool hasPartsApart(const ModelSchema& schema) {
    return std::any_of(schema.children.begin(), schema.children.end(),
                       [](const ModelSchema& child) { return child.isKeptApart; });
}

}  // namespace

const ConfigurationNode::Member* ConfigurationNode::member(std::string_view name) const {
    if (container() == nullptr) return nullptr;
    for (const Member& member : *container())
        if (localName(member.name) == name) return &member;
    return nullptr;
}

ConfigurationNodePtr ConfigurationNodes::nodeOf(const JsonValue& json, const ModelSchema* schema,
                                                bool isEntry) const {
    ConfigurationNodePtr node;
    if (schema != nullptr && schema->isKeptApart) {
        if (schema->isList() && !isEntry)
            node = listOf(json, *schema);
        else if (hasPartsApart(*schema))
            node = containerOf(json, *schema);
    }
    return node != nullptr ? node : made(ConfigurationNode::Value{tree_, json}, json);
}

ConfigurationNodePtr ConfigurationNodes::containerOf(const JsonValue& json,
                                                     const ModelSchema& schema) const {
    if (!json.is(JsonKind::object)) return {};
    ConfigurationNode::Container container;
    for (const JsonMember& member : json.members()) {
        const std::string_view name = localName(member.key);
        const ModelSchema* inner = schema.child(name);
        const auto hasName = [name](const ConfigurationNode::Member& other) {
            return localName(other.name) == name;
        };
        if (inner != nullptr && std::any_of(container.begin(), container.end(), hasName)) return {};
        container.push_back({keptName(member.key, &schema), nodeOf(member.value, inner)});
    }
    return made(std::move(container), json);
}

ConfigurationNodePtr ConfigurationNodes::listOf(const JsonValue& json,
                                                const ModelSchema& schema) const {
    if (!json.is(JsonKind::array)) return {};
    ConfigurationNode::List list;
    for (const JsonValue& element : json.elements()) {
        const auto key = keyOf(element, schema);
        if (!key) return {};
        auto entry = std::make_shared<const ConfigurationNode::Entry>(
            ConfigurationNode::Entry{std::string(*key), nodeOf(element, &schema, true)});
        const std::size_t offset = element.offset();
        list.set(std::move(entry), offset < orders_.size() ? orders_[offset] : 0);
    }
    if (list.size() != json.size()) return {};
    return made(std::move(list), json);
}

ConfigurationNodePtr ConfigurationNodes::made(ConfigurationNode::Content content,
                                              const JsonValue& json) const {
    return std::make_shared<const ConfigurationNode>(
        std::move(content), ConfigurationNode::Origin{change_, json.offset()});
}

std::string keptName(std::string_view given, const ModelSchema* container) {
    const bool isTop = container == &ModelSchema::root() && localName(given) == "qos";
    return std::string(isTop ? kTopMember : given);
}

std::optional<std::string_view> keyOf(const JsonValue& entry, const ModelSchema& list) {
    const auto member = memberOf(entry, list.key);
    if (!member) return {};
    if (!member->value.is(JsonKind::string) && !member->value.is(JsonKind::number)) return {};
    return member->value.text();
}

std::optional<JsonMember> memberOf(const JsonValue& object, std::string_view name) {
    for (const JsonMember& member : object.members())
        if (localName(member.key) == name) return member;
    return {};
}

}  // namespace QosAgent
