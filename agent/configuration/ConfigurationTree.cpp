#include "agent/configuration/ConfigurationTree.h"

#include <span>
#include <unordered_map>
#include <utility>

namespace QosAgent {
namespace {

using Node = ConfigurationNode;
using NodePtr = ConfigurationNodePtr;

/// A list has entries that are objects; a leaf-list has scalars. One without elements is taken for
/// what the schema says.
bool isListOfEntries(const JsonValue& array, const ModelSchema* schema) {
    if (array.size() == 0) return schema != nullptr && schema->isList();
    return (*array.elements().begin()).is(JsonKind::object);
}

std::size_t offsetIn(const Node& node, std::uint64_t change) {
    return node.origin().change == change ? node.origin().offset : JsonBuilder::kNoOffset;
}

class Differences {
public:
    using Visit = std::function<void(const ModelPath&, const std::optional<ConfigurationView>&,
                                     const std::optional<ConfigurationView>&)>;
    explicit Differences(const Visit& visit) : visit_(visit) {}

    void compare(const NodePtr& before, const NodePtr& after, const ModelSchema* schema,
                 bool isEntry) {
        if (before == after) return;
        if (before != nullptr && after != nullptr && before->container() != nullptr &&
            after->container() != nullptr)
            return compareMembers(*before, *after, schema);
        if (before != nullptr && after != nullptr && before->list() != nullptr &&
            after->list() != nullptr)
            return compareEntries(*before->list(), *after->list(), *schema);
        visit_(path_, viewOf(before, schema, isEntry), viewOf(after, schema, isEntry));
    }

private:
    static std::optional<ConfigurationView> viewOf(const NodePtr& node, const ModelSchema* schema,
                                                   bool isEntry) {
        if (node == nullptr) return {};
        return ConfigurationView(node, schema, isEntry);
    }
    void compareMembers(const Node& before, const Node& after, const ModelSchema* schema) {
        // An edit leaves most members in their places.
        std::span<const Node::Member> left(*before.container());
        std::span<const Node::Member> right(*after.container());
        while (!left.empty() && !right.empty() && left[0].name == right[0].name) {
            compareMember(left[0].name, left[0].node, right[0].node, schema);
            left = left.subspan(1);
            right = right.subspan(1);
        }
        std::unordered_map<std::string_view, NodePtr> later;
        for (const Node::Member& member : right)
            later.emplace(localName(member.name), member.node);
        for (const Node::Member& member : left) {
            const auto other = later.extract(localName(member.name));
            compareMember(member.name, member.node, other ? other.mapped() : nullptr, schema);
        }
        for (const auto& [name, node] : later)
            compareMember(name, nullptr, node, schema);
    }
    void compareMember(std::string_view name, const NodePtr& before, const NodePtr& after,
                       const ModelSchema* schema) {
        const std::string_view local = localName(name);
        path_.push_back({std::string(local), {}});
        compare(before, after, childOf(schema, local), false);
        path_.pop_back();
    }
    void compareEntries(const Node::List& before, const Node::List& after,
                        const ModelSchema& schema) {
        Node::List::eachDifference(before, after, [&](const auto& earlier, const auto& later) {
            const std::string& key = (earlier != nullptr ? earlier : later)->keyValue;
            path_.back().keys.push_back({std::string(schema.key), key});
            compare(earlier == nullptr ? nullptr : earlier->node,
                    later == nullptr ? nullptr : later->node, &schema, true);
            path_.back().keys.pop_back();
        });
    }

    const Visit& visit_;
    ModelPath path_;
};

}  // namespace

ConfigurationView::ConfigurationView(ConfigurationNodePtr node, const ModelSchema* schema,
                                     bool isEntry)
    : node_(std::move(node)), schema_(schema), isEntry_(isEntry) {
    if (const Node::Value* value = node_->value()) {
        tree_ = value->tree;
        json_ = value->json;
        node_ = nullptr;
    }
}

ConfigurationView::Kind ConfigurationView::kind() const {
    if (node_ != nullptr) return node_->container() != nullptr ? Kind::container : Kind::list;
    if (json_->is(JsonKind::object)) return Kind::container;
    if (!json_->is(JsonKind::array)) return Kind::leaf;
    return isListOfEntries(*json_, schema_) ? Kind::list : Kind::leafList;
}

void ConfigurationView::eachMember(
    const std::function<void(std::string_view, const ConfigurationView&)>& visit) const {
    if (node_ == nullptr) {
        for (const JsonMember& member : json_->members()) {
            const std::string_view name = localName(member.key);
            visit(name, inside(member.value, childOf(schema_, name), false));
        }
    } else if (node_->container() != nullptr) {
        for (const Node::Member& member : *node_->container()) {
            const std::string_view name = localName(member.name);
            visit(name, {member.node, childOf(schema_, name), false});
        }
    }
}

void ConfigurationView::eachEntry(
    const std::function<void(std::string_view, const ConfigurationView&)>& visit) const {
    if (node_ == nullptr) {
        for (const JsonValue& element : json_->elements())
            visit(schema_ == nullptr ? "" : keyOf(element, *schema_).value_or(""),
                  inside(element, schema_, true));
    } else if (node_->list() != nullptr) {
        for (const auto& entry : node_->list()->inOrder())
            visit(entry->keyValue, {entry->node, schema_, true});
    }
}

std::optional<ConfigurationView> ConfigurationView::member(std::string_view name) const {
    const ModelSchema* schema = childOf(schema_, name);
    if (node_ == nullptr) {
        const auto member = memberOf(*json_, name);
        if (!member) return {};
        return inside(member->value, schema, false);
    }
    const Node::Member* member = node_->member(name);
    if (member == nullptr) return {};
    return ConfigurationView(member->node, schema, false);
}

std::optional<ConfigurationView> ConfigurationView::entry(std::string_view key) const {
    if (schema_ == nullptr || isEntry_) return {};
    if (node_ == nullptr) {
        for (const JsonValue& element : json_->elements())
            if (keyOf(element, *schema_) == key) return inside(element, schema_, true);
        return {};
    }
    if (node_->list() == nullptr) return {};
    const auto* entry = node_->list()->find(key);
    if (entry == nullptr) return {};
    return ConfigurationView((*entry)->node, schema_, true);
}

void ConfigurationView::write(JsonWriter& writer) const {
    if (node_ == nullptr) {
        writeJson(writer, *json_);
    } else if (const Node::Container* container = node_->container()) {
        writer.beginObject();
        for (const Node::Member& member : *container)
            ConfigurationView(member.node, nullptr, false).write(writer.key(member.name));
        writer.endObject();
    } else {
        writer.beginArray();
        for (const auto& entry : node_->list()->inOrder())
            ConfigurationView(entry->node, nullptr, true).write(writer);
        writer.endArray();
    }
}

ConfigurationTree ConfigurationTree::of(std::shared_ptr<const Json> tree, const JsonValue& document,
                                        std::uint64_t change) {
    return ConfigurationTree(
        ConfigurationNodes(std::move(tree), change).nodeOf(document, &ModelSchema::root()));
}

ConfigurationTree ConfigurationTree::of(std::shared_ptr<const Json> tree, const JsonValue& document,
                                        std::span<const std::uint64_t> orders) {
    return ConfigurationTree(
        ConfigurationNodes(std::move(tree), orders).nodeOf(document, &ModelSchema::root()));
}

std::optional<ConfigurationView> ConfigurationTree::view() const {
    if (root_ == nullptr) return {};
    return ConfigurationView(root_, &ModelSchema::root(), false);
}

std::optional<ConfigurationView> ConfigurationTree::at(const ModelPath& path) const {
    std::optional<ConfigurationView> view = this->view();
    for (const PathElement& element : path) {
        if (view) view = view->member(element.name);
        for (const PathElement::Key& key : element.keys)
            if (view) view = key.name == view->keyName() ? view->entry(key.value) : std::nullopt;
    }
    return view;
}

void ConfigurationTree::write(JsonWriter& writer) const {
    if (root_ == nullptr)
        writer.beginObject().endObject();
    else
        view()->write(writer);
}

Json ConfigurationTree::json(std::uint64_t change) const {
    if (root_ == nullptr) return JsonBuilder().beginObject(JsonBuilder::kNoOffset).end().take();
    JsonBuilder builder;
    addJson(builder, *root_, change);
    return builder.take();
}

ConfigurationNodePtr ConfigurationTree::nodeAt(const ModelPath& path) const {
    ConfigurationNodePtr node = root_;
    for (const PathElement& element : path) {
        const Node::Member* member = node == nullptr ? nullptr : node->member(element.name);
        node = member == nullptr ? nullptr : member->node;
        if (element.keys.empty() || node == nullptr) continue;
        const auto* entry =
            node->list() == nullptr ? nullptr : node->list()->find(element.keys.front().value);
        node = entry == nullptr ? nullptr : (*entry)->node;
    }
    return node;
}

void addJson(JsonBuilder& builder, const ConfigurationNode& node, std::uint64_t change) {
    if (const Node::Value* value = node.value()) {
        if (node.origin().change == change)
            builder.copy(value->json);
        else
            builder.copy(value->json, JsonBuilder::kNoOffset);
        return;
    }
    if (const Node::Container* container = node.container()) {
        builder.beginObject(offsetIn(node, change));
        for (const Node::Member& member : *container)
            addJson(builder.key(member.name, offsetIn(*member.node, change)), *member.node, change);
    } else {
        builder.beginArray(offsetIn(node, change));
        for (const auto& entry : node.list()->inOrder())
            addJson(builder, *entry->node, change);
    }
    builder.end();
}

void eachDifference(
    const ConfigurationTree& before, const ConfigurationTree& after,
    const std::function<void(const ModelPath&, const std::optional<ConfigurationView>&,
                             const std::optional<ConfigurationView>&)>& visit) {
    Differences(visit).compare(before.root(), after.root(), &ModelSchema::root(), false);
}

}  // namespace QosAgent
