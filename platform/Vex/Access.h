#pragma once

#include <functional>
#include <optional>
#include <type_traits>

#include "platform/Vex/NodeTraits.h"
#include "platform/Vex/TypeRecord.h"

/// The accessors that type records point to, derived from the rows of a class.
namespace Vex {

/// The keyed collection type of a field, which is or contains a keyed collection.
template <class M>
struct MembersOf;
template <class M>
requires requires {
    M::kIsOrdered;
}
struct MembersOf<M> {
    using Map = M;
    static const Map& in(const M& field) { return field; }
};
template <class M>
requires requires(const M& field) {
    field.members();
}
struct MembersOf<M> {
    using Map = typename M::Members;
    static const Map& in(const M& field) { return field.members(); }
};

template <class M>
concept IsCollection = requires {
    typename MembersOf<M>::Map;
};

/// The accessors of one row.
template <class T, std::size_t I>
struct Access {
    using M = MemberAt<T, I>;
    static constexpr auto& kRow = row<T, I>;

    static const T& object(const void* at) {
        if constexpr (std::is_base_of_v<TypedNode, T>)
            return static_cast<const T&>(*static_cast<const TypedNode*>(at));
        else
            return *static_cast<const T*>(at);
    }
    static T& object(void* at) { return const_cast<T&>(object(static_cast<const void*>(at))); }
    static const M& in(const void* at) { return object(at).*kRow.member; }
    static M& in(void* at) { return object(at).*kRow.member; }

    static Value read(const void* at) { return ValueTraits<M>::to(in(at)); }
    static void write(void* at, const Value& value) {
        if constexpr (kRow.publishes)
            object(at).attributeIs(kRow.id, in(at), ValueTraits<M>::from(value));
        else
            in(at) = ValueTraits<M>::from(value);
    }
    static void touch(void* at) {
        if constexpr (kRow.publishes) object(at).publishChange(kRow.id, &in(at));
    }
};

/// The accessors of one row that is a keyed collection.
template <class T, std::size_t I>
struct CollectionAccess : Access<T, I> {
    using Base = Access<T, I>;
    using Holder = MembersOf<typename Base::M>;
    using Map = typename Holder::Map;
    using Key = ValueTraits<typename Map::Key>;
    using Mapped = ValueTraits<typename Map::Mapped>;

    static constexpr bool kPublishes = Base::kRow.publishes;
    /// Not for the children of a machine: these are created from its inputs only.
    static constexpr bool kIsPlain = std::is_same_v<Map, typename Base::M>;

    static Value valueOf(const std::optional<typename Map::Mapped>& removed) {
        return removed ? Mapped::to(*removed) : Value();
    }
    static Value valueOf(const typename Map::Mapped& child) requires(!kIsPlain) {
        return child ? Mapped::to(child) : Value();
    }
    static const Map& members(const void* at) { return Holder::in(Base::in(at)); }
    static std::size_t size(const void* at) { return members(at).size(); }
    static Value get(const void* at, const Value& key) {
        const auto* held = members(at).find(Key::from(key));
        return held == nullptr ? Value() : Mapped::to(*held);
    }
    static void walk(const void* at, const std::function<void(const Value&, const Value&)>& visit) {
        for (auto&& member : members(at))
            visit(Key::to(member.key), Mapped::to(member.value));
    }
    static void put(void* at, const Value& key, const Value& member) {
        const auto memberKey = Key::from(key);
        if constexpr (kPublishes) {
            Base::object(at).memberIs(Base::kRow.id, Base::in(at), memberKey, Mapped::from(member));
        } else if constexpr (kIsPlain) {
            auto& collection = Base::in(at);
            if (auto* held = collection.find(memberKey))
                collection.assign(memberKey, *held, Mapped::from(member));
            else
                collection.enter(memberKey, Mapped::from(member));
        }
    }
    static Value del(void* at, const Value& key) {
        auto& collection = Base::in(at);
        const auto memberKey = Key::from(key);
        if constexpr (Base::kRow.publishes) {
            return valueOf(Base::object(at).memberDel(Base::kRow.id, collection, memberKey));
        } else {
            return valueOf(collection.remove(memberKey));
        }
    }
    static void touch(void* at, const Value& key) {
        const auto memberKey = Key::from(key);
        if constexpr (Base::kRow.publishes)
            Base::object(at).publishChange(Base::kRow.id, &memberKey);
    }
    static Value keyAt(const void* published) {
        return Key::to(*static_cast<const typename Map::Key*>(published));
    }
    static constexpr CollectionOps ops{&typeOf<typename Map::Key>,
                                       Map::kIsOrdered,
                                       size,
                                       get,
                                       walk,
                                       kPublishes || kIsPlain ? put : nullptr,
                                       del,
                                       kPublishes ? touch : nullptr,
                                       keyAt};
};

}  // namespace Vex
