#pragma once

#include <string>
#include <string_view>

#include "platform/Vex/TypeRecord.h"

namespace QosAgent {

/// The form of the text at one place of the database, as documents, values and paths have it.
/// Derived from the type records. Cheap to copy; refers to type records only.
struct Form {
    /// The type at the place; for a collection, of its members.
    const Vex::Type* type;
    /// For a collection, the type of the keys; otherwise null.
    const Vex::Type* keyType = nullptr;
    Vex::Role role = Vex::Role::plain;
    bool isRoot = false;
    bool isMember = false;          ///< a member of a collection
    bool isNullable = false;        ///< the value may be null
    bool isMemberNullable = false;  ///< a member may be null

    bool isKeyed() const { return keyType != nullptr; }
    bool isEntity() const { return !isKeyed() && type->shape == Vex::Shape::entity; }
    /// Returns true if the form is an object with members by name.
    bool hasNamedMembers() const { return !isKeyed() && type->record != nullptr; }
    /// Returns true if the value repeats a key, and so cannot change.
    bool repeatsKey() const { return role == Vex::Role::key || role == Vex::Role::outerKey; }
};

Form rootForm(const Vex::Type& type);
Form formOf(const Vex::AttributeRecord& attribute);
/// Returns the form of a collection's members.
Form memberForm(const Form& keyed);

/// Returns the attribute with this name; null if there is none in the text form.
const Vex::AttributeRecord* namedInText(const Vex::TypeRecord& type, std::string_view name);
/// Returns the message for an unknown name. `where` follows the name.
std::string unknownMember(const Vex::TypeRecord& type, std::string_view name,
                          std::string_view where = {});

/// The keys that members of an object may repeat: its own key and that of the object that holds its
/// collection. Absent if there are none.
struct Keys {
    Vex::Value own;
    Vex::Value outer;

    /// Returns the keys of the member under `key` of the object that has these keys.
    Keys under(const Vex::Value& key) const { return {key, own}; }
    /// Returns the key that an attribute with this role repeats.
    const Vex::Value& repeatedBy(Vex::Role role) const {
        return role == Vex::Role::outerKey ? outer : own;
    }
};

}  // namespace QosAgent
