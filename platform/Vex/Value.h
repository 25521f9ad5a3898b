#pragma once

#include <cstdint>
#include <variant>
#include <vector>

#include "platform/Orin/Ptr.h"
#include "platform/Orin/String.h"
#include "platform/Vex/TypedNode.h"

namespace Vex {

class Value;
struct MapMember;

/// The fields of a value record, in the order of its table.
struct RecordValue {
    std::vector<Value> fields;
    friend bool operator==(const RecordValue&, const RecordValue&) = default;
};
struct ListValue {
    std::vector<Value> items;
    friend bool operator==(const ListValue&, const ListValue&) = default;
};
/// A keyed collection inside a value, in ascending key order.
struct MapValue {
    std::vector<MapMember> members;
    friend bool operator==(const MapValue&, const MapValue&);
};
using NodeRef = Orin::Ptr<const TypedNode>;

/// The value of any attribute, independent of its C++ type, for tools that use no classes.
/// `std::monostate` means absence: of an optional, or of a member under a key. Enumerations and
/// rule ids are numbers.
class Value : public std::variant<std::monostate, bool, std::uint64_t, Orin::String, NodeRef,
                                  RecordValue, ListValue, MapValue> {
public:
    using variant::variant;
    bool isAbsent() const noexcept { return index() == 0; }
    /// Returns the value as a `T`. Throws `std::bad_variant_access` if it has another type.
    template <class T>
    const T& as() const {
        return std::get<T>(*this);
    }
    template <class T>
    T& as() {
        return std::get<T>(*this);
    }
};

struct MapMember {
    Value key;
    Value value;
    friend bool operator==(const MapMember&, const MapMember&) = default;
};

inline bool operator==(const MapValue& a, const MapValue& b) {
    return a.members == b.members;
}

}  // namespace Vex
