#include "agent/configuration/ConfigurationEdit.h"

#include <string>
#include <unordered_map>
#include <utility>

#include "agent/configuration/JsonEdit.h"
#include "agent/json/Excerpt.h"

namespace QosAgent {
namespace {

using Node = ConfigurationNode;
using NodePtr = ConfigurationNodePtr;
using Operation = ConfigurationEdit::Operation;

/// Applies an edit to nodes, from the root on; below a value, `JsonEdit` goes on.
class TreeEdit {
public:
    TreeEdit(const ConfigurationEdit& edit, std::uint64_t change) : edit_(edit), change_(change) {}

    std::variant<ConfigurationTree, Fault> apply(const NodePtr& root) {
        if (!edit_.path.empty() && edit_.value) checkKey(edit_.path.back());
        NodePtr after;
        if (!fault_) after = edited(root, &ModelSchema::root(), false, 0);
        if (fault_) return *std::move(fault_);
        return ConfigurationTree(std::move(after));
    }

private:
    std::span<const PathElement> stepsFrom(std::size_t at) const {
        return std::span(edit_.path).subspan(at);
    }
    NodePtr made(Node::Content content) const {
        return std::make_shared<const Node>(std::move(content),
                                            Node::Origin{change_, edit_.pathOffset});
    }
    NodePtr nodeOf(Json json, const ModelSchema* schema, bool isEntry) const {
        const auto tree = std::make_shared<const Json>(std::move(json));
        return ConfigurationNodes(tree, change_).nodeOf(tree->root(), schema, isEntry);
    }
    static bool isOf(const Node& node, std::uint64_t change) {
        return node.origin().change == change;
    }

    /// What becomes of the node that the first `at` steps lead to; null: it is removed.
    NodePtr edited(const NodePtr& held, const ModelSchema* schema, bool isEntry, std::size_t at) {
        if (at == edit_.path.size()) return ended(held, schema, isEntry, at);
        if (held == nullptr && edit_.operation == Operation::remove) return {};
        if (held != nullptr && held->container() == nullptr) return editedValue(*held, schema, at);
        const PathElement& step = edit_.path[at];
        if (held == nullptr && childOf(schema, step.name) == nullptr)
            return editedNothing(schema, isEntry, at);
        return editedContainer(held, schema, isEntry, at);
    }
    NodePtr editedValue(const Node& held, const ModelSchema* schema, std::size_t at) {
        const Node::Value* value = held.value();
        if (value == nullptr) return {};
        JsonEdit edit(edit_, stepsFrom(at));
        return nodeOf(edit.apply(value->json, isOf(held, change_), schema), schema, true);
    }
    /// A new value that the rest of the path leads through.
    NodePtr editedNothing(const ModelSchema* schema, bool isEntry, std::size_t at) {
        // An entry begins with its key, which the step before says.
        const std::size_t from = isEntry ? at - 1 : at;
        JsonEdit edit(edit_, stepsFrom(from));
        if (!isEntry) return nodeOf(edit.apply({}, true, schema), schema, false);
        const Json holder = edit.apply({}, true, nullptr);
        const JsonValue list = (*holder.root().members().begin()).value;
        return nodeOf(copyOf(*list.elements().begin()), schema, true);
    }
    NodePtr editedContainer(const NodePtr& held, const ModelSchema* schema, bool isEntry,
                            std::size_t at) {
        const PathElement& step = edit_.path[at];
        const ModelSchema* inner = childOf(schema, step.name);
        Node::Container members = held == nullptr ? newMembers(isEntry, at) : *held->container();
        auto member = members.begin();
        while (member != members.end() && localName(member->name) != step.name)
            ++member;
        const NodePtr before = member == members.end() ? nullptr : member->node;
        const NodePtr after = step.keys.empty() ? edited(before, inner, false, at + 1)
                                                : editedList(before, inner, at);
        if (after == before) return held;
        if (after == nullptr)
            members.erase(member);
        else if (before == nullptr)
            members.push_back({keptName(step.name, schema), after});
        else
            member->node = after;
        // What an edit emptied is not there any more; an entry has its key at least.
        if (members.empty()) return {};
        return made(std::move(members));
    }
    Node::Container newMembers(bool isEntry, std::size_t at) const {
        Node::Container members;
        if (!isEntry) return members;
        for (const PathElement::Key& key : edit_.path[at - 1].keys)
            members.push_back(
                {key.name,
                 nodeOf(JsonBuilder().text(key.value, edit_.pathOffset).take(), nullptr, false)});
        return members;
    }
    NodePtr editedList(const NodePtr& held, const ModelSchema* schema, std::size_t at) {
        if (schema == nullptr || !schema->isKeptApart ||
            (held != nullptr && held->list() == nullptr))
            return editedListValue(held, schema, at);
        const std::string& key = edit_.path[at].keys.front().value;
        Node::List list = held == nullptr ? Node::List() : *held->list();
        const auto* entry = list.find(key);
        const NodePtr before = entry == nullptr ? nullptr : (*entry)->node;
        const NodePtr after = edited(before, schema, true, at + 1);
        if (after == before) return held;
        if (after == nullptr)
            list.erase(key);
        else
            list.set(std::make_shared<const Node::Entry>(Node::Entry{key, after}));
        if (list.empty()) return {};
        return made(std::move(list));
    }
    /// A list that is kept as a value: it is edited together with its holder.
    NodePtr editedListValue(const NodePtr& held, const ModelSchema* schema, std::size_t at) {
        JsonBuilder holder;
        holder.beginObject(edit_.pathOffset);
        if (held != nullptr) holder.key(edit_.path[at].name, 0).copy(held->value()->json);
        const Json before = holder.end().take();
        const ModelSchema wrapped{"", "", {schema, schema == nullptr ? 0u : 1u}};
        JsonEdit edit(edit_, stepsFrom(at));
        const bool isOfChange = held == nullptr || isOf(*held, change_);
        const Json after = edit.apply(before.root(), isOfChange, &wrapped);
        const auto members = after.root().members();
        if (members.begin() == members.end()) return {};
        const JsonValue list = (*members.begin()).value;
        if (list.size() == 0) return {};
        return nodeOf(copyOf(list), schema, false);
    }

    /// What becomes of the node at the end of the path.
    NodePtr ended(const NodePtr& held, const ModelSchema* schema, bool isEntry, std::size_t at) {
        if (edit_.operation == Operation::remove) return {};
        if (held != nullptr && edit_.operation == Operation::update)
            return merged(held, *edit_.value, schema, isEntry);
        return nodeOf(isEntry ? withKey(edit_.path[at - 1]) : copyOf(*edit_.value), schema,
                      isEntry);
    }
    /// The value of a whole entry may repeat the keys of the path, and must agree with them.
    void checkKey(const PathElement& step) {
        for (const PathElement::Key& key : step.keys) {
            const auto member = memberOf(*edit_.value, key.name);
            if (!member || member->value.text() == key.value) continue;
            fault_ = Fault{member->value.offset(),
                           "differs from the key in the path, which is " + excerpt(key.value)};
        }
    }
    /// The value, which has the keys that the path says.
    Json withKey(const PathElement& step) const {
        if (!edit_.value->is(JsonKind::object)) return copyOf(*edit_.value);
        JsonBuilder builder;
        builder.beginObject(edit_.value->offset());
        for (const PathElement::Key& key : step.keys)
            if (!memberOf(*edit_.value, key.name))
                builder.key(key.name, edit_.pathOffset).text(key.value, edit_.pathOffset);
        for (const JsonMember& member : edit_.value->members())
            builder.key(member.key, member.keyOffset).copy(member.value);
        return builder.end().take();
    }

    NodePtr merged(const NodePtr& held, const JsonValue& value, const ModelSchema* schema,
                   bool isEntry) {
        if (held->container() != nullptr && value.is(JsonKind::object))
            return mergedContainer(*held->container(), value, schema);
        if (held->list() != nullptr && value.is(JsonKind::array))
            return mergedList(*held->list(), value, *schema);
        if (held->value() == nullptr) return nodeOf(copyOf(value), schema, isEntry);
        JsonEdit edit(edit_, {});
        return nodeOf(edit.merge(held->value()->json, isOf(*held, change_), value, schema), schema,
                      isEntry);
    }
    NodePtr mergedContainer(const Node::Container& held, const JsonValue& value,
                            const ModelSchema* schema) {
        Node::Container members = held;
        std::unordered_map<std::string_view, std::size_t> places;
        for (const Node::Member& member : held)
            places.emplace(localName(member.name), places.size());
        for (const JsonMember& given : value.members()) {
            const std::string_view name = localName(given.key);
            const ModelSchema* inner = childOf(schema, name);
            const auto [at, isNew] = places.emplace(name, members.size());
            if (isNew)
                members.push_back(
                    {keptName(given.key, schema), nodeOf(copyOf(given.value), inner, false)});
            else
                members[at->second].node =
                    merged(members[at->second].node, given.value, inner, false);
        }
        return made(std::move(members));
    }
    NodePtr mergedList(Node::List list, const JsonValue& value, const ModelSchema& schema) {
        for (const JsonValue& given : value.elements()) {
            const auto key = keyOf(given, schema);
            if (!key) {
                fault_ =
                    Fault{given.offset(), "the list key " + excerpt(schema.key) + " is missing"};
                return {};
            }
            const std::string name(*key);
            const auto* entry = list.find(name);
            NodePtr after = entry == nullptr ? nodeOf(copyOf(given), &schema, true)
                                             : merged((*entry)->node, given, &schema, true);
            list.set(std::make_shared<const Node::Entry>(Node::Entry{name, std::move(after)}));
        }
        return made(std::move(list));
    }

    const ConfigurationEdit& edit_;
    std::uint64_t change_;
    std::optional<Fault> fault_;
};

}  // namespace

std::variant<ConfigurationTree, Fault> edited(const ConfigurationTree& tree,
                                              const ConfigurationEdit& edit, std::uint64_t change) {
    return TreeEdit(edit, change).apply(tree.root());
}

}  // namespace QosAgent
