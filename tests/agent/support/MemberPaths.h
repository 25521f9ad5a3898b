#pragma once

#include <set>
#include <string>

#include "agent/database/Database.h"
#include "agent/database/Path.h"
#include "agent/database/Printer.h"
#include "agent/database/Scalars.h"

namespace QosAgent {

/// The paths of all that may be there or not in the inputs of a database: entities, members of
/// collections, optional values.
class MemberPaths {
public:
    explicit MemberPaths(const Database& database) {
        for (const Subtree& subtree : database.subtrees())
            if (!subtree.mount->isState) visit(std::string(subtree.mount->path), *subtree.root);
    }
    std::set<std::string> take() { return std::move(paths_); }

private:
    void visit(const std::string& place, const Vex::TypedNode& node) {
        for (const Vex::AttributeRecord& attribute : node.typeData().attributes) {
            if (attribute.isHidden) continue;
            const std::string inner = place + '/' + std::string(attribute.name);
            if (attribute.collection == nullptr) {
                visitValue(inner, *attribute.type, attribute.read(&node));
                continue;
            }
            for (const auto& [key, member] : sortedMembers(node, attribute))
                visitMember(memberPlace(inner, *attribute.collection->key, key), *attribute.type,
                            member);
        }
    }
    void visitMember(const std::string& place, const Vex::Type& type, const Vex::Value& member) {
        paths_.insert(place);
        visitParts(place, type, member);
    }
    void visitValue(const std::string& place, const Vex::Type& type, const Vex::Value& value) {
        const bool isEntity = type.shape == Vex::Shape::entity;
        if (value.isAbsent() || (isEntity && !value.as<Vex::NodeRef>())) return;
        if (isEntity || type.isOptional) paths_.insert(place);
        visitParts(place, type, value);
    }
    void visitParts(const std::string& place, const Vex::Type& type, const Vex::Value& value) {
        if (type.shape == Vex::Shape::entity && value.as<Vex::NodeRef>())
            visit(place, *value.as<Vex::NodeRef>());
        if (type.shape == Vex::Shape::map)
            for (const auto& [key, member] : value.as<Vex::MapValue>().members)
                visitMember(memberPlace(place, *type.key, key), *type.element, member);
        if (type.shape != Vex::Shape::record) return;
        const auto& fields = value.as<Vex::RecordValue>().fields;
        for (std::size_t i = 0; i < fields.size(); ++i) {
            const Vex::AttributeRecord& field = type.record->attributes[i];
            visitValue(place + '/' + std::string(field.name), *field.type, fields[i]);
        }
    }
    static std::string memberPlace(std::string place, const Vex::Type& keyType,
                                   const Vex::Value& key) {
        appendKeyStep(place, keyText(keyType, key));
        return place;
    }

    std::set<std::string> paths_;
};

inline std::set<std::string> memberPaths(const Database& database) {
    return MemberPaths(database).take();
}

}  // namespace QosAgent
