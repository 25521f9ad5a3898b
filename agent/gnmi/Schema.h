#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace QosAgent::Gnmi {

/// The model that is served, as Capabilities names it.
inline constexpr std::string_view kModelName = "openconfig-qos";
inline constexpr std::string_view kModelOrganization = "OpenConfig working group";
inline constexpr std::string_view kModelVersion = "2.2.0";

enum class NodeKind { container, list, leaf, leafList };

/// Which side of the model a leaf belongs to. The key leaf of a list entry belongs to both.
enum class Side { none, key, config, state };

/// One row of the table of the served model: a container, and the leaves of its `config` and of its
/// `state`, divided by spaces. A leaf is `NAME`, `NAME*` for a leaf-list, and either with `:TYPE`
/// (the type is `string` otherwise). A `state` repeats the leaves of its `config`; the row names
/// those that ever have a value.
struct SchemaRow {
    std::string_view path;  ///< lists with their key: `/qos/queues/queue[name]`
    std::string_view config;
    std::string_view state;
};

/// All rows, in the order of the model.
std::span<const SchemaRow> schemaRows();

/// A node of the served model. All nodes live as long as the program and never change.
class SchemaNode {
public:
    SchemaNode(const SchemaNode* parent, std::string_view name, NodeKind kind);

    const SchemaNode* parent() const { return parent_; }  ///< null for the root
    std::string_view name() const { return name_; }       ///< empty for the root
    NodeKind kind() const { return kind_; }
    Side side() const { return side_; }
    /// The name of a list's key; empty for anything else.
    std::string_view key() const { return key_; }
    /// The type of a leaf, as the rows give it.
    std::string_view type() const { return type_; }
    /// False for a leaf of `state` that never has a value.
    bool isServed() const { return isServed_; }
    bool isLeaf() const { return kind_ == NodeKind::leaf || kind_ == NodeKind::leafList; }
    bool isList() const { return kind_ == NodeKind::list; }
    /// The node's place in the model: siblings ascend in the order of the rows.
    std::size_t order() const { return order_; }
    /// How many elements a path to the node has.
    std::size_t depth() const { return chain_.size(); }
    /// The nodes from below the root down to this one, this one included.
    const std::vector<const SchemaNode*>& chain() const { return chain_; }
    const std::vector<std::unique_ptr<SchemaNode>>& children() const { return children_; }
    /// Null if there is none of that name.
    const SchemaNode* child(std::string_view name) const;
    bool isAtOrBelow(const SchemaNode& ancestor) const;

private:
    friend class SchemaBuilder;

    const SchemaNode* parent_;
    std::string_view name_;
    NodeKind kind_;
    Side side_ = Side::none;
    std::string_view key_;
    std::string_view type_;
    bool isServed_ = true;
    std::size_t order_ = 0;
    std::vector<std::unique_ptr<SchemaNode>> children_;
    std::vector<const SchemaNode*> chain_;
};

/// The root of the served model, above `qos`.
const SchemaNode& schemaRoot();

/// The node with this path, lists without keys: `/qos/queues/queue/config/name`. The caller must
/// name one that the model has.
const SchemaNode& schemaNode(std::string_view path);

}  // namespace QosAgent::Gnmi
