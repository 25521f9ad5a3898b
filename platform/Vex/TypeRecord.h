#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>

#include "platform/Orin/Publisher.h"
#include "platform/Vex/NamedEnum.h"
#include "platform/Vex/Value.h"

/// What the runtime knows of types: plain data, written once by the tables of the classes. Tools
/// that print, read or walk objects are written against this and know no class.
namespace Vex {

struct TypeRecord;

enum class Shape : std::uint8_t {
    boolean,
    number,
    text,
    enumeration,
    record,
    list,
    map,
    entity,
};

/// The type of a value. What does not apply to its shape is 0, empty or null.
struct Type {
    Shape shape;
    bool isOptional = false;
    std::uint64_t maximum = 0;             ///< numbers and enumerations: the greatest value
    std::span<const EnumName> names = {};  ///< enumerations, ascending by value
    bool isNamedOnly = false;              ///< enumerations: a value without a name is an error
    const TypeRecord* record = nullptr;    ///< records and entities
    const Type* key = nullptr;             ///< maps
    const Type* element = nullptr;         ///< lists and maps
};

/// What an attribute is to the object that has it.
enum class Role : std::uint8_t {
    plain,     ///< part of its own state
    key,       ///< repeats the key under which the object is kept
    outerKey,  ///< repeats the key of the collection's own holder
    keyCopy,   ///< reads as the key when nothing is said of it
    input,     ///< what a machine was given
    child,     ///< a machine, or a collection of machines, that it owns
};

/// How to work on a keyed collection. `object` is a `TypedNode*`.
struct CollectionOps {
    const Type* key;
    bool isOrdered;  ///< walked in ascending key order
    std::size_t (*size)(const void* object);
    /// Absent when there is no such member; a member may also be a null entity.
    Value (*get)(const void* object, const Value& key);
    /// Visits every member that is there at the beginning and is still there at its turn.
    void (*walk)(const void* object,
                 const std::function<void(const Value& key, const Value& member)>& visit);
    /// Enters or replaces a member, through the publisher; null where members are only derived.
    void (*put)(void* object, const Value& key, const Value& member);
    /// Removes a member, through the publisher, and returns it; absent when there was none.
    Value (*del)(void* object, const Value& key);
    /// Publishes the change of a key again, changing nothing; null where nothing is published.
    void (*touch)(void* object, const Value& key);
    /// The key that a published change of the collection points to.
    Value (*keyAt)(const void* published);
};

/// One attribute. `object` is a `TypedNode*` for machines and entities, a pointer to the record
/// itself for values.
struct AttributeRecord {
    std::string_view name;
    Orin::AttributeId id;
    Role role;
    bool isWatched;   ///< a machine subscribes to it
    bool isHidden;    ///< not part of the text form
    bool isNullable;  ///< a collection of entities: a member may be null
    bool announces;   ///< its change tells that the other attributes are as they should be
    const Type* type = nullptr;  ///< of the attribute; of a member where it is a collection
    /// Null where it is a collection.
    Value (*read)(const void* object) = nullptr;
    /// Null where fixed at construction or a collection. Through the publisher, if it has one.
    void (*write)(void* object, const Value& value) = nullptr;
    /// Publishes the change of the attribute again; null where nothing is published.
    void (*touch)(void* object) = nullptr;
    const CollectionOps* collection = nullptr;  ///< null: not a collection
};

struct TypeRecord {
    std::string_view fullName;
    std::span<const AttributeRecord> attributes;  ///< in declaration order
    /// Makes an object from its constructor's arguments, which are the leading attributes that are
    /// keys or inputs. Throws `std::invalid_argument` when there are more or fewer,
    /// `std::bad_variant_access` or `std::bad_cast` when one is of another type.
    /// Null for value records.
    Orin::Ptr<TypedNode> (*construct)(std::span<const Value> given);
};

/// The attribute of that name, or id; null if there is none.
PLATFORM_API const AttributeRecord* attributeNamed(const TypeRecord& type, std::string_view name);
PLATFORM_API const AttributeRecord* attributeWithId(const TypeRecord& type, Orin::AttributeId id);

}  // namespace Vex
