#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "agent/configuration/ConfigurationNode.h"
#include "agent/configuration/ModelPath.h"
#include "agent/json/JsonBuilder.h"
#include "agent/json/JsonWriter.h"

namespace QosAgent {

/// A node of a configuration, as its readers see it. Cheap to copy; keeps what it shows alive.
class ConfigurationView {
public:
    enum class Kind {
        container,  ///< an object, or an entry of a list
        list,       ///< entries with keys
        leaf,
        leafList,
    };
    ConfigurationView(ConfigurationNodePtr node, const ModelSchema* schema, bool isEntry);

    Kind kind() const;
    /// Of a container: calls `visit` with the name (without the module's prefix) and the view of
    /// each member, in the order given.
    void eachMember(const std::function<void(std::string_view name,
                                             const ConfigurationView& member)>& visit) const;
    /// Of a list: calls `visit` with the text of the key and the view of each entry, in the order
    /// given.
    void eachEntry(const std::function<void(std::string_view key, const ConfigurationView& entry)>&
                       visit) const;
    /// Nothing if there is none.
    std::optional<ConfigurationView> member(std::string_view name) const;
    std::optional<ConfigurationView> entry(std::string_view key) const;
    /// The name of the leaf that tells the entries of a list apart; empty where it is not known.
    std::string_view keyName() const { return schema_ == nullptr ? "" : schema_->key; }
    /// Of a leaf or a leaf-list.
    const JsonValue& json() const { return *json_; }
    void write(JsonWriter& writer) const;

private:
    ConfigurationView(std::shared_ptr<const Json> tree, const JsonValue& json,
                      const ModelSchema* schema, bool isEntry)
        : tree_(std::move(tree)), json_(json), schema_(schema), isEntry_(isEntry) {}
    ConfigurationView inside(const JsonValue& json, const ModelSchema* schema, bool isEntry) const {
        return {tree_, json, schema, isEntry};
    }

    ConfigurationNodePtr node_;         ///< null: a value
    std::shared_ptr<const Json> tree_;  ///< which `json_` is part of
    std::optional<JsonValue> json_;
    const ModelSchema* schema_;
    bool isEntry_;
};

/// The OpenConfig configuration as it was given, with what the agent does not carry: an immutable
/// snapshot that shares with others what they have in common. Copies cost a pointer, and may be
/// read by several threads.
class ConfigurationTree {
public:
    /// Configures nothing.
    ConfigurationTree() = default;
    explicit ConfigurationTree(ConfigurationNodePtr root) : root_(std::move(root)) {}
    /// A whole document, which is `document` within `tree`.
    static ConfigurationTree of(std::shared_ptr<const Json> tree, const JsonValue& document,
                                std::uint64_t change);
    /// The same, with the places of list entries as `ConfigurationNodes` reads them.
    static ConfigurationTree of(std::shared_ptr<const Json> tree, const JsonValue& document,
                                std::span<const std::uint64_t> orders);

    const ConfigurationNodePtr& root() const { return root_; }
    /// Nothing if nothing is configured.
    std::optional<ConfigurationView> view() const;
    /// What is at the path; nothing if nothing is.
    std::optional<ConfigurationView> at(const ModelPath& path) const;
    /// The node at the path, as far as nodes are kept apart; null if there is none.
    ConfigurationNodePtr nodeAt(const ModelPath& path) const;
    /// The document, `{}` where nothing is configured.
    void write(JsonWriter& writer) const;
    /// The same as a tree. What the change with that number brought has its place there, the rest
    /// none.
    Json json(std::uint64_t change) const;

    friend bool operator==(const ConfigurationTree&, const ConfigurationTree&) = default;

private:
    ConfigurationNodePtr root_;
};

/// Adds a node with all it holds to a tree that is built. What the change with that number brought
/// keeps its places, the rest has none.
void addJson(JsonBuilder& builder, const ConfigurationNode& node, std::uint64_t change);

/// Calls `visit` with the path of each node that one of two trees has otherwise than the other, as
/// far as nodes are kept apart, and with both views, nothing where it is absent. Does not look at
/// what the trees share.
void eachDifference(
    const ConfigurationTree& before, const ConfigurationTree& after,
    const std::function<void(const ModelPath& path, const std::optional<ConfigurationView>& before,
                             const std::optional<ConfigurationView>& after)>& visit);

}  // namespace QosAgent
