#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "bench/Event.h"
#include "platform/Vex/Entity.h"
#include "platform/Vex/Reactor.h"
#include "platform/Vex/TraceHandle.h"

namespace QosBench {

inline constexpr std::size_t kManySubscribers = 64;
/// What the machines do that are told last: set to end the counting.
inline void (*atLastHandler)() = [] {};

/// Something that rings.
class Bell final : public Vex::Entity<Bell> {
public:
    static constexpr std::string_view kTypeName = "QosBench::Bell";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<Orin::String> kRinger{"ringer", 1};
    static constexpr auto fields() { return std::tuple{Vex::published(kRinger, &Bell::ringer_)}; }
    using Ringers = Vex::HashMap2018<Orin::String, std::uint32_t, Vex::seedOf("Bell.ringer")>;

    Ringers& ringers() noexcept { return ringer_; }

private:
    Ringers ringer_;
};

/// Hears a bell.
template <bool kIsLast>
class BellSm final : public Vex::Reactor<BellSm<kIsLast>> {
public:
    static constexpr std::string_view kTypeName =
        kIsLast ? "QosBench::LastSm" : "QosBench::OtherSm";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{Vex::watched("bell", 1, &BellSm::bell_, bellDispatch)};
    }

    explicit BellSm(const Orin::Ptr<const Bell>& bell) : bell_(bell) { this->start(); }
    ~BellSm() override { this->stop(); }

    void handleInitialized() {}
    [[gnu::noinline]] void handleRinger(const Orin::String&) {
        if constexpr (kIsLast) atLastHandler();
    }

    static constexpr Orin::Dispatch bellDispatch =
        Vex::dispatchTo<BellSm, Vex::On<Bell::kRinger, &BellSm::handleRinger>>;

private:
    Vex::Watched<Bell> bell_;
};

/// What everything else is made of.
class Primitives {
public:
    /// Over a collection of that many members.
    explicit Primitives(std::size_t members);

    std::size_t members() const noexcept { return few_->ringers().size(); }

    void call();
    void callHandler();
    void publishToOne();
    void publishToMany();
    /// By the text of the key, and by one that is equal to it.
    void findByText();
    void findByEqualText();
    void takeReference();
    void traceWhileOff();
    void walk();

private:
    using OtherSm = BellSm<false>;
    using LastSm = BellSm<true>;

    Orin::Ptr<Bell> few_ = Bell::create();
    Orin::Ptr<Bell> many_ = Bell::create();
    Orin::String name_;
    Orin::String equalName_;
    std::uint32_t* found_ = nullptr;
    std::uint32_t sum_ = 0;
    Orin::Ptr<LastSm> toldAlone_;
    std::vector<Orin::Ptr<OtherSm>> toldBefore_;
    Orin::Ptr<LastSm> toldLast_;
};

template <class P>
std::size_t membersOf(const P& primitives) {
    return primitives.members();
}
template <class P>
std::size_t furtherSubscribers(const P&) {
    return kManySubscribers - 1;
}
template <class P>
constexpr Event<P> primitive(std::string_view name, void (*run)(P&)) {
    return {.name = name, .run = run, .base = "call"};
}
template <class P>
inline constexpr std::array kPrimitiveEvents{
    Event<P>{.name = "call", .run = verb<P, &P::call>},
    Event<P>{.name = "handler called", .run = verb<P, &P::callHandler>},
    Event<P>{
        .name = "publish to handler", .run = verb<P, &P::publishToOne>, .base = "handler called"},
    Event<P>{.name = "publish to handler, each further",
             .run = verb<P, &P::publishToMany>,
             .share = furtherSubscribers<P>,
             .base = "publish to handler"},
    primitive<P>("look-up by name", verb<P, &P::findByText>),
    primitive<P>("look-up by an equal name", verb<P, &P::findByEqualText>),
    primitive<P>("reference taken and dropped", verb<P, &P::takeReference>),
    primitive<P>("switched-off trace line", verb<P, &P::traceWhileOff>),
    Event<P>{
        .name = "walk, a member", .run = verb<P, &P::walk>, .share = membersOf<P>, .base = "call"},
};

}  // namespace QosBench
