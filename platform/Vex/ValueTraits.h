#pragma once

#include <limits>
#include <optional>
#include <stdexcept>
#include <type_traits>

#include "platform/Orin/String.h"
#include "platform/Orin/Vector.h"
#include "platform/Ovk/UniqueId.h"
#include "platform/Vex/FlatMap.h"
#include "platform/Vex/TypeRecord.h"

/// Converts each C++ type of attributes to and from `Value`: `type`, `to` and `from`. `from` throws
/// `std::bad_variant_access`, `std::bad_cast` or `std::out_of_range` if the value is not of the
/// type.
namespace Vex {

template <class T>
struct ValueTraits;

/// Returns the type description of `T`; there is one object for each type.
template <class T>
inline constexpr Type typeOf = ValueTraits<T>::type;

template <class T>
T narrowed(const Value& value, std::uint64_t maximum) {
    const std::uint64_t number = value.as<std::uint64_t>();
    if (number > maximum) throw std::out_of_range("number out of range");
    return static_cast<T>(number);
}

template <>
struct ValueTraits<bool> {
    static constexpr Type type{.shape = Shape::boolean};
    static Value to(bool value) { return value; }
    static bool from(const Value& value) { return value.as<bool>(); }
};

template <class T>
requires std::is_unsigned_v<T>
struct ValueTraits<T> {
    static constexpr Type type{.shape = Shape::number, .maximum = std::numeric_limits<T>::max()};
    static Value to(T value) { return std::uint64_t{value}; }
    static T from(const Value& value) { return narrowed<T>(value, type.maximum); }
};

template <>
struct ValueTraits<Ovk::UniqueId> {
    static constexpr Type type = ValueTraits<std::uint64_t>::type;
    static Value to(Ovk::UniqueId id) { return id.value; }
    static Ovk::UniqueId from(const Value& value) { return {value.as<std::uint64_t>()}; }
};

template <>
struct ValueTraits<Orin::String> {
    static constexpr Type type{.shape = Shape::text};
    static Value to(const Orin::String& text) { return text; }
    static Orin::String from(const Value& value) { return value.as<Orin::String>(); }
};

template <NamedEnum E>
struct ValueTraits<E> {
    static constexpr Type type{.shape = Shape::enumeration,
                               .maximum = std::numeric_limits<std::underlying_type_t<E>>::max(),
                               .names = enumNames(E{}),
                               .isNamedOnly = requires {isNamedOnly(E{});
}
};  // namespace Vex
static Value to(E value) {
    return static_cast<std::uint64_t>(value);
}
static E from(const Value& value) {
    return narrowed<E>(value, type.maximum);
}
}
;

template <class T>
struct ValueTraits<std::optional<T>> {
    static constexpr Type optional(Type of) {
        of.isOptional = true;
        return of;
    }
    static constexpr Type type = optional(ValueTraits<T>::type);
    static Value to(const std::optional<T>& value) {
        return value ? ValueTraits<T>::to(*value) : Value();
    }
    static std::optional<T> from(const Value& value) {
        if (value.isAbsent()) return std::nullopt;
        return ValueTraits<T>::from(value);
    }
};

template <class T>
struct ValueTraits<Orin::Vector<T>> {
    static constexpr Type type{.shape = Shape::list, .element = &typeOf<T>};
    static Value to(const Orin::Vector<T>& list) {
        ListValue items;
        for (const T& item : list)
            items.items.push_back(ValueTraits<T>::to(item));
        return items;
    }
    static Orin::Vector<T> from(const Value& value) {
        Orin::Vector<T> list;
        for (const Value& item : value.as<ListValue>().items)
            list.push(ValueTraits<T>::from(item));
        return list;
    }
};

template <class K, class V>
struct ValueTraits<FlatMap<K, V>> {
    static constexpr Type type{.shape = Shape::map, .key = &typeOf<K>, .element = &typeOf<V>};
    static Value to(const FlatMap<K, V>& map) {
        MapValue members;
        for (const auto& [key, value] : map)
            members.members.push_back({ValueTraits<K>::to(key), ValueTraits<V>::to(value)});
        return members;
    }
    static FlatMap<K, V> from(const Value& value) {
        FlatMap<K, V> map;
        for (const auto& [key, member] : value.as<MapValue>().members)
            map.is(ValueTraits<K>::from(key), ValueTraits<V>::from(member));
        return map;
    }
};

}  // namespace Vex
