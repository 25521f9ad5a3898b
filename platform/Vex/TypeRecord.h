#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>

#include "platform/Orin/Publisher.h"
#include "platform/Vex/NamedEnum.h"
#include "platform/Vex/Value.h"

/// Descriptions of types: plain data that derives from the tables of the classes. Tools that print,
/// read or walk objects use these and no class.
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

/// The type of a value. Members that do not apply to its shape are 0, empty or null.
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

/// The role of an attribute in its object.
enum class Role : std::uint8_t {
    plain,     ///< a part of the object's own state
    key,       ///< repeats the key under which the object is kept
    outerKey,  ///< repeats the key of the collection's own holder
    keyCopy,   ///< has the value of the key unless it is given
    input,     ///< an input of a machine
    child,     ///< a machine, or a collection of machines, that it owns
};

/// Functions for a keyed collection. `object` is a `TypedNode*`.
struct CollectionOps {
    const Type* key;
    bool isOrdered;  ///< walked in ascending key order
    std::size_t (*size)(const void* object);
    /// Returns the member; absence if there is none. A member may be a null entity.
    Value (*get)(const void* object, const Value& key);
    /// Visits every member that is present at the beginning and still present at its turn.
    void (*walk)(const void* object,
                 const std::function<void(const Value& key, const Value& member)>& visit);
    /// Inserts or replaces a member and publishes it. Null if members are derived only.
    void (*put)(void* object, const Value& key, const Value& member);
    /// Removes a member, publishes it and returns the member; absence if there was none.
    Value (*del)(void* object, const Value& key);
    /// Publishes the change of a key again; null if the collection publishes nothing.
    void (*touch)(void* object, const Value& key);
    /// Returns the key to which a published change of the collection points.
    Value (*keyAt)(const void* published);
};

/// One attribute. `object` is a `TypedNode*` for machines and entities, a pointer to the record
/// itself for values.
struct AttributeRecord {
    std::string_view name;
    Orin::AttributeId id;
    Role role;
    bool isWatched;              ///< a machine subscribes to it
    bool isHidden;               ///< not part of the text form
    bool isNullable;             ///< a collection of entities: a member may be null
    bool announces;              ///< its change announces that the other attributes are complete
    const Type* type = nullptr;  ///< of the attribute; for a collection, of a member
    /// Reads the attribute. Null for a collection.
    Value (*read)(const void* object) = nullptr;
    /// Sets the attribute and publishes it. Null for a collection, or if fixed at construction.
    void (*write)(void* object, const Value& value) = nullptr;
    /// Publishes the change of the attribute without changing it. Null if it is not published.
    void (*touch)(void* object) = nullptr;
    const CollectionOps* collection = nullptr;  ///< null: not a collection
};

struct TypeRecord {
    std::string_view fullName;
    std::span<const AttributeRecord> attributes;  ///< in declaration order
    /// Creates an object from the arguments of its constructor, which are the leading attributes
    /// with the roles key or input. Throws `std::invalid_argument` if the number of arguments is
    /// wrong, `std::bad_variant_access` or `std::bad_cast` if an argument has the wrong type. Null
    /// for value records.
    Orin::Ptr<TypedNode> (*construct)(std::span<const Value> given);
};

/// Returns the attribute with this name or id; null if there is none.
PLATFORM_API const AttributeRecord* attributeNamed(const TypeRecord& type, std::string_view name);
PLATFORM_API const AttributeRecord* attributeWithId(const TypeRecord& type, Orin::AttributeId id);

}  // namespace Vex
