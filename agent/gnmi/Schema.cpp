#include "agent/gnmi/Schema.h"

#include <algorithm>
#include <cassert>

namespace QosAgent::Gnmi {

namespace {

/// Takes the part of `text` before the next `divider` off its front; all of it if there is none.
std::string_view takePart(std::string_view& text, char divider) {
    const std::size_t end = text.find(divider);
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return part;
}

}  // namespace

SchemaNode::SchemaNode(const SchemaNode* parent, std::string_view name, NodeKind kind)
    : parent_(parent), name_(name), kind_(kind) {
    if (parent == nullptr) return;
    chain_ = parent->chain_;
    chain_.push_back(this);
    order_ = parent->children_.size();
}

const SchemaNode* SchemaNode::child(std::string_view name) const {
    const auto at = std::find_if(children_.begin(), children_.end(),
                                 [&](const auto& child) { return child->name_ == name; });
    return at == children_.end() ? nullptr : at->get();
}

bool SchemaNode::isAtOrBelow(const SchemaNode& ancestor) const {
    if (ancestor.depth() == 0) return true;
    return depth() >= ancestor.depth() && chain_[ancestor.depth() - 1] == &ancestor;
}

/// Makes the nodes of the rows.
class SchemaBuilder {
public:
    std::unique_ptr<SchemaNode> build() {
        auto root = std::make_unique<SchemaNode>(nullptr, "", NodeKind::container);
        for (const SchemaRow& row : schemaRows())
            addRow(*root, row);
        return root;
    }

private:
    static SchemaNode& add(SchemaNode& parent, std::string_view name, NodeKind kind) {
        for (const auto& child : parent.children_)
            if (child->name_ == name) return *child;
        parent.children_.push_back(std::make_unique<SchemaNode>(&parent, name, kind));
        return *parent.children_.back();
    }

    /// A path element that may be a list: `NAME` or `NAME[KEY]`.
    static SchemaNode& addElement(SchemaNode& parent, std::string_view element) {
        const std::string_view name = takePart(element, '[');
        if (element.empty()) return add(parent, name, NodeKind::container);
        SchemaNode& list = add(parent, name, NodeKind::list);
        list.key_ = element.substr(0, element.size() - 1);
        add(list, list.key_, NodeKind::leaf).side_ = Side::key;
        return list;
    }

    static void addLeaves(SchemaNode& holder, std::string_view leaves, Side side) {
        while (!leaves.empty()) {
            std::string_view type = takePart(leaves, ' ');
            std::string_view name = takePart(type, ':');
            const bool isList = name.ends_with('*');
            if (isList) name.remove_suffix(1);
            SchemaNode& leaf = add(holder, name, isList ? NodeKind::leafList : NodeKind::leaf);
            leaf.side_ = side;
            leaf.type_ = type.empty() ? "string" : type;
            leaf.isServed_ = side == Side::config;
        }
    }

    static void addRow(SchemaNode& root, const SchemaRow& row) {
        SchemaNode* node = &root;
        for (std::string_view rest = row.path.substr(1); !rest.empty();)
            node = &addElement(*node, takePart(rest, '/'));
        addLeaves(add(*node, "config", NodeKind::container), row.config, Side::config);
        SchemaNode& state = add(*node, "state", NodeKind::container);
        addLeaves(state, row.config, Side::state);
        for (std::string_view rest = row.state; !rest.empty();)
            add(state, takePart(rest, ' '), NodeKind::leaf).isServed_ = true;
        giveKeyItsType(*node);
    }

    static void giveKeyItsType(SchemaNode& list) {
        if (!list.isList()) return;
        add(list, list.key_, NodeKind::leaf).type_ = list.child("config")->child(list.key_)->type();
    }
};

const SchemaNode& schemaRoot() {
    static const std::unique_ptr<SchemaNode> root = SchemaBuilder().build();
    return *root;
}

const SchemaNode& schemaNode(std::string_view path) {
    const SchemaNode* node = &schemaRoot();
    for (std::string_view rest = path.substr(1); !rest.empty();) {
        node = node->child(takePart(rest, '/'));
        assert(node != nullptr);
    }
    return *node;
}

}  // namespace QosAgent::Gnmi
