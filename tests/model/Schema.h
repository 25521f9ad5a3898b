#pragma once

#include <string_view>
#include <vector>

namespace Model {

struct Type;

/// How the members of a collection are kept.
enum class Keyed {
    no,       ///< no collection: one thing, or none
    entered,  ///< in order of entry
    byName,   ///< ascending, by bytes
    byNumber  ///< ascending, by value
};

/// A member that documents and change streams can name.
struct Attribute {
    std::string_view name;
    const Type* type;
    Keyed keyed = Keyed::no;
    /// May be absent (a member of a collection: null).
    bool isOptional = false;
    /// Set after the others.
    bool isLast = false;
    /// Repeats the key of the thing.
    bool isKey = false;
    /// Reads as the key of the thing until it is set.
    bool copiesKey = false;
};

struct Type {
    enum class Shape { entity, record, plain };
    Shape shape;
    std::string_view zero;  ///< of a plain one: what it is until it is set
    std::vector<Attribute> attributes;

    bool isEntity() const { return shape == Shape::entity; }
    const Attribute& attribute(std::string_view name) const;
};

/// A subtree of the database.
struct Mount {
    std::string_view path;
    const Type* type;
};

extern const Mount kQosStatus, kQosInput, kAclInput, kClassifierConfig, kClassifierState;
/// Those that change streams may name.
extern const std::vector<Mount> kInputs;

/// The number of an enumerator, from its name or its digits.
unsigned long numberOf(std::string_view enumerator);

}  // namespace Model
