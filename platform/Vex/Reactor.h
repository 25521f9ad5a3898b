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

/// A machine, seen without its class.
class PLATFORM_API ReactorNode : public TypedNode {
public:
    /// Sets the zombie flag of the machine and of the reactors nested in it. While it is set, all
    /// changes are ignored.
    virtual void vexDoZombieReactors(bool zombie) = 0;
};

/// The base of every machine: its whole life cycle, driven by the rows of `Sm::fields()`.
///
/// A machine class is final. Its constructor ends with `start()`, its destructor begins with
/// `stop()`; it has `handleInitialized()`, which catches up with what is there already.
template <class Sm>
class Reactor : public ReactorNode, public OvSlab::Slabbed<Sm> {
public:
    const TypeRecord& typeData() const final { return Sm::kTypeRecord; }
    /// Turns the machine's subscriptions on or off, and those of all machines below it.
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
    /// True when each input is the very thing passed here.
    template <class... A>
    bool isMadeFrom(const A&... given) const {
        static_assert(sizeof...(A) == givenCount<Sm>(), "one argument for each input");
        return allSame(std::index_sequence_for<A...>{}, given...);
    }
    /// A new machine, started and with its notifications on. What its constructor throws passes
    /// on, and leaves nothing behind.
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
        // Its constructor has subscribed, and what it made is active already.
        machine->flagIs(kNotificationActive, true);
        return machine;
    }

protected:
    ~Reactor() override {
        assertThat(!flag(kStarted), "destructor begins with stop()", "platform/Vex/Reactor",
                   __LINE__, __PRETTY_FUNCTION__);
    }
    /// Subscribes to the watched inputs in order and catches up.
    void start() {
        startIdle();
        try {
            self().handleInitialized();
        } catch (...) {
            stop();
            throw;
        }
    }
    /// Subscribes without catching up.
    void startIdle() noexcept {
        eachRow<Sm>([this]<std::size_t I>() {
            if constexpr (NeedsDispatch<MemberAt<Sm, I>>)
                (self().*row<Sm, I>.member).bind(row<Sm, I>.dispatch, &self());
        });
        flagIs(kStarted, true);
        subscriptionsAre(true);
    }
    /// Drops subscriptions, then children. The first statement of the destructor.
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
