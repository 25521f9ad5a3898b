#pragma once

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include "agent/json/Json.h"
#include "agent/openconfig/Findings.h"

namespace QosAgent {

/// A container or a list entry of the module openconfig-qos as a document holds it: an object whose
/// members may be named with the module's prefix. What is not as the model wants it goes to the
/// findings. Stays on the stack: it refers to the node above it.
class ModelNode {
public:
    /// The module's top container.
    ModelNode(const JsonValue& json, Findings& findings) : ModelNode(nullptr, "", json, findings) {}

    std::size_t offset() const { return json_.offset(); }

    /// All other members are passed over, `state` containers as one kind, and members given twice
    /// are refused.
    void carries(std::initializer_list<std::string_view> names) const;
    /// The member of that name in the model; nothing if there is none.
    std::optional<JsonMember> member(std::string_view name) const;
    /// A text; nothing if there is none, or it is refused.
    std::optional<JsonValue> text(std::string_view name) const;
    /// A list or leaf-list; nothing if there is none, or it is refused.
    std::optional<JsonValue> list(std::string_view name) const;
    /// A container; nothing if there is none, or it is refused.
    std::optional<ModelNode> container(std::string_view name) const;
    /// Calls `visit` with each entry of a list that is alone in a container.
    template <class Visit>
    void eachEntry(std::string_view containerName, std::string_view listName, Visit visit) const {
        const auto holder = container(containerName);
        if (!holder) return;
        holder->carries({listName});
        const auto list = holder->list(listName);
        if (!list) return;
        for (const JsonValue& entry : list->elements()) {
            const ModelNode node(&*holder, listName, entry, findings_);
            if (node.isObject()) visit(node);
        }
    }
    /// Returns the key of a list entry, and refuses it where `config`, which may be missing, does
    /// not repeat it. Nothing if there is no key.
    std::optional<JsonValue> listKey(std::string_view name,
                                     const std::optional<ModelNode>& config) const;
    /// The same for a key that names something in the database, and cannot be empty there.
    std::optional<JsonValue> listName(std::string_view name,
                                      const std::optional<ModelNode>& config) const;
    /// False when it is refused, being something else.
    bool isObject() const;

private:
    ModelNode(const ModelNode* parent, std::string_view name, const JsonValue& json,
              Findings& findings)
        : parent_(parent), name_(name), json_(json), findings_(findings) {}

    std::string pathOf(std::string_view memberName) const;
    /// The value of a member, which must be of that kind.
    std::optional<JsonValue> valueOf(std::string_view name, JsonKind kind,
                                     std::string_view wanted) const;

    const ModelNode* parent_;
    std::string_view name_;
    JsonValue json_;
    Findings& findings_;
};

/// Neither a leaf nor a list entry is below the value.
bool holdsNothing(const JsonValue& value);

}  // namespace QosAgent
