#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

#include "platform/Orin/Ptr.h"
#include "platform/OvSlab/Slab.h"
#include "platform/Vex/Assert.h"
#include "platform/Vex/Fields.h"
#include "platform/Vex/Table.h"
#include "platform/Vex/TypedNode.h"

namespace Vex {

/// The interface of all machines, independent of their class.
class PLATFORM_API ReactorNode : public TypedNode {
public:
    /// Sets the zombie flag of the machine and of its nested reactors. While it is set, they ignore
    /// all changes.
    virtual void vexDoZombieReactors(bool zombie) = 0;
};

/// The base class of all machines. Implements the whole life cycle from the rows of `Sm::fields()`.
///
/// A machine class must be final, end its constructor with `start()`, and begin its destructor with
/// `stop()`. Its `handleInitialized()` handles the members that are present at the start.
template <class Sm>
class Reactor : public ReactorNode, public OvSlab::Slabbed<Sm> {
public:
    const TypeRecord& typeData() const final { return Sm::kTypeRecord; }
    /// Switches the subscriptions of the machine, and of all machines below it, on or off.
    void hasNotificationActiveIs(bool active) {
        if (active == notificationActive()) return;
        flagIs(kNotificationActive, active);
        subscriptionsAre(active);
        eachField([active](auto& field) {
            if constexpr (requires { field.activeIs(active); }) field.activeIs(active);
        });
    }
    void vexDoZombieReactors(bool zombie) final {
        if (zombie == this->zombie()) return;
        flagIs(kZombie, zombie);
        eachField([zombie](auto& field) {
            if constexpr (requires { field.zombieIs(zombie); }) field.zombieIs(zombie);
        });
    }
    /// Returns true if each input is the identical object that is passed here.
    template <class... A>
    bool isMadeFrom(const A&... given) const {
        static_assert(sizeof...(A) == givenCount<Sm>(), "one argument for each input");
        return allSame(std::index_sequence_for<A...>{}, given...);
    }
    /// Creates a machine, starts it and switches its notifications on. Passes on an exception of
    /// the constructor; nothing is left behind then.
    template <class... A>
    static Orin::Ptr<Sm> create(const A&... given) {
        static_assert(givenRowsLead<Sm>(),
                      "fields() lists inputs first, in the order of the constructor's arguments");
        static_assert(std::is_constructible_v<Sm, const A&...>,
                      "these arguments do not fit the machine's constructor");
        static_assert(tableIsComplete<Sm>(sizeof(Reactor)),
                      "fields() leaves out a data member, or lists them out of declaration order");
        static_assert(std::is_final_v<Sm>,
                      "a machine's constructor ends with start(): it is final");
        auto machine = Orin::Ptr<Sm>::adopt(new Sm(given...));
        assertThat(machine->flag(kStarted), "constructor ends with start()", "platform/Vex/Reactor",
                   __LINE__, __PRETTY_FUNCTION__);
        // Its constructor has subscribed, and its children are active already.
        machine->flagIs(kNotificationActive, true);
        return machine;
    }

protected:
    ~Reactor() override {
        assertThat(!flag(kStarted), "destructor begins with stop()", "platform/Vex/Reactor",
                   __LINE__, __PRETTY_FUNCTION__);
    }
    /// Subscribes to the watched inputs in order, then calls `handleInitialized()`.
    void start() {
        startIdle();
        try {
            self().handleInitialized();
        } catch (...) {
            stop();
            throw;
        }
    }
    /// Subscribes without calling `handleInitialized()`.
    void startIdle() noexcept {
        eachRow<Sm>([this]<std::size_t I>() {
            if constexpr (NeedsDispatch<MemberAt<Sm, I>>)
                (self().*row<Sm, I>.member).bind(row<Sm, I>.dispatch, &self());
        });
        flagIs(kStarted, true);
        subscriptionsAre(true);
    }
    /// Ends subscriptions, then removes the children. The destructor must call it first.
    void stop() noexcept {
        subscriptionsAre(false);
        flagIs(kStarted, false);
        eachField([](auto& field) {
            if constexpr (HoldsReactors<std::remove_reference_t<decltype(field)>>) field.clear();
        });
    }

private:
    Sm& self() noexcept { return static_cast<Sm&>(*this); }
    const Sm& self() const noexcept { return static_cast<const Sm&>(*this); }
    template <std::size_t... I, class... A>
    bool allSame(std::index_sequence<I...>, const A&... given) const {
        return ((self().*row<Sm, I>.member == given) && ...);
    }
    template <class F>
    void eachField(F f) {
        eachRow<Sm>([&]<std::size_t I>() { f(self().*row<Sm, I>.member); });
    }
    void subscriptionsAre(bool on) noexcept {
        eachField([on](auto& field) {
            if constexpr (NeedsDispatch<std::remove_reference_t<decltype(field)>>)
                field.subscribedIs(on);
        });
    }
};

}  // namespace Vex
