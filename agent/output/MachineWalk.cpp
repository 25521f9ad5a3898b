#include "agent/output/MachineWalk.h"

#include "agent/database/Printer.h"
#include "agent/database/Scalars.h"

namespace QosAgent {
namespace {

using Vex::AttributeRecord;
using Vex::NodeRef;
using Vex::Role;
using Vex::Shape;
using Vex::TypedNode;
using Vex::Value;
using Text = std::optional<std::string>;

class MachineWalk {
public:
    MachineWalk(MachineSink& sink, const Database& database) : sink_(sink), database_(database) {}

    void machine(std::string_view label, const TypedNode& node, const Text& key) {
        sink_.beginMachine(label, node.typeData().fullName, key);
        for (const AttributeRecord& attribute : node.typeData().attributes)
            this->attribute(node, attribute);
        sink_.endMachine();
    }
    void attribute(const TypedNode& node, const AttributeRecord& attribute) {
        if (attribute.collection != nullptr) {
            members(node, attribute);
            return;
        }
        const Value value = attribute.read(&node);
        if (attribute.type->shape == Shape::entity)
            nodeIn(attribute, value.as<NodeRef>());
        else
            sink_.value(attribute.name, {*attribute.type, value});
    }

private:
    void nodeIn(const AttributeRecord& attribute, const NodeRef& node) {
        if (!node)
            sink_.nothing(attribute.name);
        else if (attribute.role == Role::input || attribute.isWatched)
            sink_.input(attribute.name, node->typeData().fullName, nameOf(*node));
        else
            machine(attribute.name, *node, {});
    }
    void members(const TypedNode& node, const AttributeRecord& attribute) {
        const Vex::Type& keyType = *attribute.collection->key;
        sink_.beginMembers(attribute.name);
        for (const auto& [key, member] : sortedMembers(node, attribute)) {
            if (attribute.role == Role::child)
                machine({}, *member.as<NodeRef>(), keyText(keyType, key));
            else
                sink_.member({keyType, key}, {*attribute.type, member});
        }
        sink_.endMembers();
    }
    Text nameOf(const TypedNode& node) const {
        for (const Subtree& subtree : database_.subtrees())
            if (subtree.root.get() == &node) return std::string(subtree.mount->path);
        for (const AttributeRecord& attribute : node.typeData().attributes)
            if (attribute.role == Role::key) return keyText(*attribute.type, attribute.read(&node));
        return {};
    }

    MachineSink& sink_;
    const Database& database_;
};

}  // namespace

void walkMachines(MachineSink& sink, const Database& database, MachineOwners owners) {
    MachineWalk walk(sink, database);
    for (const auto& owner : owners) {
        for (const AttributeRecord& attribute : owner->typeData().attributes) {
            if (attribute.role != Role::child || attribute.collection != nullptr) continue;
            const Value value = attribute.read(owner.get());
            if (const auto& machine = value.as<NodeRef>()) walk.machine({}, *machine, {});
        }
    }
}

}  // namespace QosAgent
