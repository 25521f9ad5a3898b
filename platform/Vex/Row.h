#pragma once

#include <string_view>
#include <tuple>

#include "platform/Vex/Attribute.h"
#include "platform/Vex/TypeRecord.h"

/// The rows of a class's table. Each class lists its members once, in a static member function
/// `fields()`. All code that needs the list derives from it.
namespace Vex {

template <class C, class M>
struct Row {
    using Member = M;
    std::string_view name;
    Orin::AttributeId id;
    M C::*member;
    Role role = Role::plain;
    bool isGiven = false;     ///< a constructor argument; such rows come first, in order
    bool isHidden = false;    ///< not part of the text form
    bool isNullable = false;  ///< a collection of entities: a member may be null
    bool announces = false;   ///< its change announces that the other attributes are complete
    bool publishes = false;   ///< changes are published by the entity
    Orin::Dispatch dispatch = nullptr;  ///< watched inputs: the function that their changes call

    constexpr Row hidden() const {
        Row row = *this;
        row.isHidden = true;
        return row;
    }
    constexpr Row copyingKey() const {
        Row row = *this;
        row.role = Role::keyCopy;
        return row;
    }
    constexpr Row owned() const {
        Row row = *this;
        row.role = Role::child;
        return row;
    }
    constexpr Row nullable() const {
        Row row = *this;
        row.isNullable = true;
        return row;
    }
    constexpr Row announcing() const {
        Row row = *this;
        row.announces = true;
        return row;
    }
};

template <class M>
concept NeedsDispatch = requires(M& member) {
    member.subscribedIs(true);
};
/// Fields with child machines or nested reactors: cleared when the machine stops.
template <class M>
concept HoldsReactors = requires(M& member) {
    member.activeIs(true);
    member.clear();
};
template <class M>
concept HoldsMachines = HoldsReactors<M> && requires {
    typename M::Machine;
};

/// A machine's input that it subscribes to.
template <class C, NeedsDispatch M>
constexpr auto watched(std::string_view name, Orin::AttributeId id, M C::*member,
                       Orin::Dispatch dispatch) {
    Row<C, M> row{name, id, member, Role::input, true};
    row.dispatch = dispatch;
    return row;
}
/// A machine's input that it only keeps.
template <class C, class M>
constexpr auto given(std::string_view name, Orin::AttributeId id, M C::*member) {
    static_assert(!NeedsDispatch<M>, "a watched input names its dispatch: use watched()");
    static_assert(!HoldsMachines<M>, "children are the machine's own: use own()");
    return Row<C, M>{name, id, member, Role::input, true};
}
/// A member that the machine creates: children and plain fields.
template <class C, class M>
constexpr auto own(std::string_view name, Orin::AttributeId id, M C::*member) {
    return Row<C, M>{name, id, member, HoldsMachines<M> ? Role::child : Role::plain};
}

/// A member of an entity or value that repeats the key under which the object is kept.
template <class C, class M>
constexpr auto key(std::string_view name, Orin::AttributeId id, M C::*member) {
    return Row<C, M>{name, id, member, Role::key, true};
}
/// A member that repeats the key of the object that holds the collection.
template <class C, class M>
constexpr auto outerKey(std::string_view name, Orin::AttributeId id, M C::*member) {
    return Row<C, M>{name, id, member, Role::outerKey, true};
}
/// A published attribute of an entity.
template <class C, class M, class Key>
constexpr auto published(const Attribute<Key>& attribute, M C::*member) {
    Row<C, M> row{attribute.name, attribute.id, member};
    row.publishes = true;
    return row;
}
/// A field of a value record.
template <class C, class M>
constexpr auto field(std::string_view name, Orin::AttributeId id, M C::*member) {
    return Row<C, M>{name, id, member};
}

}  // namespace Vex
