#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "agent/configuration/ModelSchema.h"
#include "agent/configuration/PersistentMap.h"
#include "agent/json/Json.h"

namespace QosAgent {

class ConfigurationNode;
/// Null stands for what is not there.
using ConfigurationNodePtr = std::shared_ptr<const ConfigurationNode>;

/// A node of the configuration that is kept apart from its neighbours: a container or a list whose
/// parts are nodes, or a value, which is JSON with all that is below it. Immutable.
class ConfigurationNode {
public:
    struct Member {
        std::string name;  ///< as it was given, with or without prefix
        ConfigurationNodePtr node;
    };
    using Container = std::vector<Member>;
    struct Entry {
        std::string keyValue;
        ConfigurationNodePtr node;

        const std::string& key() const { return keyValue; }
    };
    using List = PersistentMap<Entry>;
    struct Value {
        std::shared_ptr<const Json> tree;  ///< which `json` is part of
        JsonValue json;
    };
    /// Where the node was said: in the text of the change with that number.
    struct Origin {
        std::uint64_t change;
        std::size_t offset;
    };
    using Content = std::variant<Container, List, Value>;

    ConfigurationNode(Content content, const Origin& origin)
        : content_(std::move(content)), origin_(origin) {}

    const Content& content() const { return content_; }
    const Origin& origin() const { return origin_; }
    const Container* container() const { return std::get_if<Container>(&content_); }
    const List* list() const { return std::get_if<List>(&content_); }
    const Value* value() const { return std::get_if<Value>(&content_); }
    /// Of a container, by the name without prefix; null if there is none.
    const Member* member(std::string_view localName) const;

private:
    Content content_;
    Origin origin_;
};

/// Makes nodes of JSON. What is not as the schema has it becomes a value: whoever reads it later
/// finds out what is wrong with it.
class ConfigurationNodes {
public:
    /// Of a tree that the change with that number brought.
    ConfigurationNodes(std::shared_ptr<const Json> tree, std::uint64_t change)
        : tree_(std::move(tree)), change_(change) {}
    /// Of a tree in which the offset of a list entry says where in `orders` its place in the list
    /// stands. An offset beyond them: the entry stands behind those before it.
    ConfigurationNodes(std::shared_ptr<const Json> tree, std::span<const std::uint64_t> orders)
        : tree_(std::move(tree)), change_(0), orders_(orders) {}

    /// `schema` may be null. `isEntry`: the node is one entry of the list that the schema
    /// describes.
    ConfigurationNodePtr nodeOf(const JsonValue& json, const ModelSchema* schema,
                                bool isEntry = false) const;

private:
    ConfigurationNodePtr containerOf(const JsonValue& json, const ModelSchema& schema) const;
    /// Null if the entries cannot be told apart by their keys.
    ConfigurationNodePtr listOf(const JsonValue& json, const ModelSchema& schema) const;
    ConfigurationNodePtr made(ConfigurationNode::Content content, const JsonValue& json) const;

    std::shared_ptr<const Json> tree_;
    std::uint64_t change_;
    std::span<const std::uint64_t> orders_;
};

/// The name under which a container keeps a member: the top one has its prefix, however it was
/// given. `container` may be null.
std::string keptName(std::string_view given, const ModelSchema* container);
/// The text of the key of a list entry; nothing if it has none that is a string or a number.
std::optional<std::string_view> keyOf(const JsonValue& entry, const ModelSchema& list);
/// The member of that name without prefix; nothing if there is none.
std::optional<JsonMember> memberOf(const JsonValue& object, std::string_view localName);

}  // namespace QosAgent
