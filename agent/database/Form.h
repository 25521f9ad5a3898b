#pragma once

#include <string>
#include <string_view>

#include "platform/Vex/TypeRecord.h"

namespace QosAgent {

/// What may stand at one place of the text form: the type records as documents, values and paths
/// see them. Cheap to copy; refers to type records only.
struct Form {
    /// Of the thing; of its members where it is keyed.
    const Vex::Type* type;
    /// Not null: a collection, with members by keys of this type.
    const Vex::Type* keyType = nullptr;
    Vex::Role role = Vex::Role::plain;
    bool isRoot = false;
    bool isMember = false;          ///< a member of a collection
    bool isNullable = false;        ///< null may stand for it
    bool isMemberNullable = false;  ///< null may stand for a member of it

    bool isKeyed() const { return keyType != nullptr; }
    bool isEntity() const { return !isKeyed() && type->shape == Vex::Shape::entity; }
    /// An object of members by name.
    bool hasNamedMembers() const { return !isKeyed() && type->record != nullptr; }
    /// Repeats a key, and so cannot change.
    bool repeatsKey() const { return role == Vex::Role::key || role == Vex::Role::outerKey; }
};

Form rootForm(const Vex::Type& type);
Form formOf(const Vex::AttributeRecord& attribute);
/// The form of the members of a keyed one.
Form memberForm(const Form& keyed);

/// The attribute that text can name so; null if there is none.
const Vex::AttributeRecord* namedInText(const Vex::TypeRecord& type, std::string_view name);
/// What is wrong when there is none. `where` follows the name.
std::string unknownMember(const Vex::TypeRecord& type, std::string_view name,
                          std::string_view where = {});

/// The keys that the parts of a thing may repeat: its own and that of its collection's holder.
/// Absent where there are none.
struct Keys {
    Vex::Value own;
    Vex::Value outer;

    /// The keys of what is kept under `key` within the thing that has these.
    Keys under(const Vex::Value& key) const { return {key, own}; }
    /// The one that an attribute of this role repeats.
    const Vex::Value& repeatedBy(Vex::Role role) const {
        return role == Vex::Role::outerKey ? outer : own;
    }
};

}  // namespace QosAgent
