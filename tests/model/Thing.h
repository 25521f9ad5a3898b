#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/model/Json.h"
#include "tests/model/Schema.h"

namespace Model {

struct Thing;
using Ref = std::shared_ptr<Thing>;

/// A member of a collection. Null: listed, but nothing is there.
struct Member {
    std::string key;
    Ref thing;
};

/// What one attribute holds: a thing or none, or the members of a collection in their order.
struct Slot {
    Ref thing;
    std::vector<Member> members;
};

/// An entity, a record or a single value of the database. An entity is one for as long as it lives;
/// values are never changed in place, but stored anew.
struct Thing {
    const Type& type;
    std::string text;         ///< of a plain one, as it is written
    std::vector<Slot> slots;  ///< by attribute

    Slot& slot(std::string_view name);
    const Slot& slot(std::string_view name) const;
    const std::vector<Member>& members(std::string_view name) const { return slot(name).members; }
    const Ref& one(std::string_view name) const { return slot(name).thing; }
    /// Of a plain attribute that is always there.
    const std::string& textOf(std::string_view name) const { return one(name)->text; }
    /// The member under the key; null if there is none.
    Ref member(std::string_view name, std::string_view key) const;
};

/// What a thing is until something of it is set. `key`: what it repeats.
Ref defaultThing(const Type& type, const std::string& key);
/// The same value again, to be changed.
Ref copied(const Ref& value);
bool isSame(const Ref& left, const Ref& right);
/// As it would be given in a document.
Json written(const Thing& thing);

/// Where a member stands, or would be entered.
std::vector<Member>::iterator placeOf(Slot& slot, const Attribute& attribute, std::string_view key);

}  // namespace Model
