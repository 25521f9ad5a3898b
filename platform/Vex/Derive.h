#pragma once

#include <array>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>

#include "platform/Vex/Access.h"
#include "platform/Vex/TypeRecord.h"

/// Derives type records from the tables of classes. The source file of a class includes this header
/// and defines the record: `constinit const TypeRecord X::kTypeRecord = Vex::recordOf<X>();`
namespace Vex {

template <class T, std::size_t I>
constexpr AttributeRecord attributeRecord() {
    using M = MemberAt<T, I>;
    constexpr auto& r = row<T, I>;
    AttributeRecord record{.name = r.name,
                           .id = r.id,
                           .role = r.role,
                           .isWatched = NeedsDispatch<M> || (HoldsReactors<M> && !HoldsMachines<M>),
                           .isHidden = r.isHidden,
                           .isNullable = r.isNullable,
                           .announces = r.announces};
    if constexpr (IsCollection<M>) {
        record.type = &typeOf<typename MembersOf<M>::Map::Mapped>;
        record.collection = &CollectionAccess<T, I>::ops;
    } else {
        record.type = &typeOf<M>;
        record.read = Access<T, I>::read;
        if constexpr (!NeedsDispatch<M> && !HoldsReactors<M> && !r.isGiven)
            record.write = Access<T, I>::write;
        if constexpr (r.publishes) record.touch = Access<T, I>::touch;
    }
    return record;
}

/// The type of the constructor's argument for a row.
template <class M>
struct GivenAs {
    using type = M;
};
template <class M>
requires requires {
    typename M::Given;
}
struct GivenAs<M> {
    using type = typename M::Given;
};

template <class T, class = std::make_index_sequence<fieldCount<T>>,
          class = std::make_index_sequence<givenCount<T>()>>
struct Derived;
template <class T, std::size_t... I, std::size_t... G>
struct Derived<T, std::index_sequence<I...>, std::index_sequence<G...>> {
    static constexpr std::array<AttributeRecord, sizeof...(I)> attributes{
        attributeRecord<T, I>()...};
    static Orin::Ptr<TypedNode> construct(std::span<const Value> given) {
        if (given.size() != sizeof...(G)) throw std::invalid_argument(std::string(T::kTypeName));
        return T::create(ValueTraits<typename GivenAs<MemberAt<T, G>>::type>::from(given[G])...);
    }
};

/// The type record of a machine or entity.
template <class T>
constexpr TypeRecord recordOf() {
    if constexpr (std::is_base_of_v<TypedNode, T>) {
        return {T::kTypeName, Derived<T>::attributes, Derived<T>::construct};
    } else {
        static_assert(tableIsComplete<T>(0), "fields() leaves out a data member");
        return {T::kTypeName, Derived<T>::attributes, nullptr};
    }
}

}  // namespace Vex
