#pragma once

#include <string_view>
#include <tuple>
#include <type_traits>

#include "platform/Orin/Node.h"
#include "platform/Orin/Publisher.h"

namespace Vex {

/// A published attribute of an entity; a constant of the entity's class. Its changes carry a key of
/// this type; `void` if the attribute is not a collection.
template <class Key = void>
struct Attribute {
    std::string_view name;
    Orin::AttributeId id;
    using KeyType = Key;
};

template <class>
struct HandlerOf;
template <class C, class... A>
struct HandlerOf<void (C::*)(A...)> {
    using Owner = C;
    using Key = std::remove_cvref_t<std::tuple_element_t<0, std::tuple<A..., void>>>;
};

/// Binds a published attribute to a handler of a machine. The handler takes the changed key, or no
/// argument.
template <const auto& kAttribute, auto kHandler>
struct On {
    using Handler = HandlerOf<decltype(kHandler)>;
    using Key = typename std::remove_cvref_t<decltype(kAttribute)>::KeyType;
    static_assert(std::is_void_v<typename Handler::Key> ||
                      std::is_same_v<typename Handler::Key, Key>,
                  "a handler takes nothing, or exactly the key of the attribute it is bound to");

    /// Returns true if the changed attribute is this one.
    static bool call(typename Handler::Owner& machine, Orin::AttributeId id, const void* key) {
        if (id != kAttribute.id) return false;
        if constexpr (std::is_void_v<typename Handler::Key>)
            (machine.*kHandler)();
        else
            (machine.*kHandler)(*static_cast<const Key*>(key));
        return true;
    }
};

/// The dispatch of one watched input: calls the changed attribute's handler, if it has one. Ignores
/// all changes for a zombie, and for a machine that was released while it handles another change.
template <class Machine, class... Ons>
void dispatchTo(Orin::Publisher&, Orin::Subscriber& record, Orin::AttributeId attributeId,
                const void* key) noexcept {
    auto& machine = *static_cast<Machine*>(record.owner);
    machine.handle([&] { (void)(Ons::call(machine, attributeId, key) || ...); });
}

}  // namespace Vex
