#pragma once

#include <cstdint>

#include "platform/Vex/NotifieeConst.h"
#include "platform/Vex/Reactor.h"
#include "tests/support/Harbour.h"

/// Machines over the toy schema, with one field of every kind that the engine knows. Whatever a
/// machine handles it writes to the board; there it can be seen, in order, by a subscriber.
namespace Harbour {

/// Posts the draught of one ship, and each cargo that changes. A ship called `wreck` makes it throw
/// `std::runtime_error` on its way up; a draught of `kOverload` while it is handled.
class ShipSm final : public Vex::Reactor<ShipSm> {
public:
    static constexpr std::string_view kTypeName = "Harbour::ShipSm";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::watched("ship", 1, &ShipSm::ship_, shipDispatch),
            Vex::given("board", 2, &ShipSm::board_),
        };
    }
    static constexpr std::uint16_t kOverload = 0xFFFF;

    ShipSm(const Orin::Ptr<const Ship>& ship, const Orin::Ptr<Board>& board);
    ~ShipSm() override { stop(); }

    bool isSubscribed() const noexcept { return ship_.isSubscribed(); }
    void handleInitialized();
    void handleDraught();
    void handleCargo(const Orin::String& kind);
    /// Takes the ship's lines off the board.
    void doPrepareToDie();

    static constexpr Orin::Dispatch shipDispatch =
        Vex::dispatchTo<ShipSm, Vex::On<Ship::kDraught, &ShipSm::handleDraught>,
                        Vex::On<Ship::kCargo, &ShipSm::handleCargo>>;

private:
    Vex::Watched<Ship> ship_;
    Orin::Ptr<Board> board_;
};

/// Posts the level of the tide.
class TideSm final : public Vex::Reactor<TideSm> {
public:
    static constexpr std::string_view kTypeName = "Harbour::TideSm";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::watched("tide", 1, &TideSm::tide_, tideDispatch),
            Vex::given("board", 2, &TideSm::board_),
        };
    }

    TideSm(const Orin::Ptr<const Tide>& tide, const Orin::Ptr<Board>& board);
    ~TideSm() override { stop(); }

    bool isSubscribed() const noexcept { return tide_.isSubscribed(); }
    void handleInitialized();
    void handleLevel();
    void doPrepareToDie();

    static constexpr Orin::Dispatch tideDispatch =
        Vex::dispatchTo<TideSm, Vex::On<Tide::kLevel, &TideSm::handleLevel>>;

private:
    Vex::Watched<Tide> tide_;
    Orin::Ptr<Board> board_;
};

/// The root: one ShipSm for each ship, one TideSm for the tide; a nested reactor follows the
/// watched beacon's level. Port and beacon may be null.
class PortSm final : public Vex::Reactor<PortSm> {
public:
    /// Posts the beacon's level; ignores all changes while it carries the zombie flag.
    class BeaconWatch final : public Vex::NotifieeConst<Tide> {
    public:
        BeaconWatch(Notifier notifier, PortSm& owner);
        void onAttribute(Orin::AttributeId attributeId, const void* key) override;

    private:
        PortSm& owner_;
    };

    static constexpr std::string_view kTypeName = "Harbour::PortSm";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::watched("port", 1, &PortSm::port_, portDispatch),
            Vex::watched("weather", 2, &PortSm::weather_, weatherDispatch),
            Vex::given("beacon", 3, &PortSm::beacon_),
            Vex::given("board", 4, &PortSm::board_),
            Vex::own("shipSm", 5, &PortSm::shipSm_),
            Vex::own("tideSm", 6, &PortSm::tideSm_),
            Vex::own("changes", 7, &PortSm::changes_),
        };
    }
    using ShipSmByName = Vex::Children<Orin::String, ShipSm, Vex::seedOf("PortSm.shipSm")>;

    PortSm(const Orin::Ptr<const Port>& port, const Orin::Ptr<const Tide>& weather,
           const Orin::Ptr<const Tide>& beacon, const Orin::Ptr<Board>& board);
    ~PortSm() override { stop(); }

    Orin::Ptr<ShipSm> shipSmIs(const Orin::Ptr<const Ship>& ship, const Orin::Ptr<Board>& board);
    Orin::Ptr<ShipSm> shipSmDel(const Orin::String& name) { return shipSm_.remove(name); }
    void shipSmDelAll() { shipSm_.clear(); }
    const ShipSmByName& shipSm() const noexcept { return shipSm_; }
    Orin::Ptr<TideSm> tideSmIs(const Orin::Ptr<const Tide>& tide, const Orin::Ptr<Board>& board);
    Orin::Ptr<TideSm> tideSmDel() { return tideSm_.remove(); }
    const Vex::Child<TideSm>& tideSm() const noexcept { return tideSm_; }
    Vex::Nested<BeaconWatch>& beacon() noexcept { return beacon_; }
    /// Changes handled since the start.
    std::uint32_t changes() const noexcept { return changes_; }
    bool isSubscribed() const noexcept { return port_.isSubscribed(); }

    void handleInitialized();
    void handleShip(const Orin::String& name);
    void handleTide();
    void handleSignal();
    void handleWeather();
    void doPrepareToDie() {}

    static constexpr Orin::Dispatch portDispatch =
        Vex::dispatchTo<PortSm, Vex::On<Port::kShip, &PortSm::handleShip>,
                        Vex::On<Port::kTide, &PortSm::handleTide>,
                        Vex::On<Port::kSignal, &PortSm::handleSignal>>;
    static constexpr Orin::Dispatch weatherDispatch =
        Vex::dispatchTo<PortSm, Vex::On<Tide::kLevel, &PortSm::handleWeather>>;

private:
    Vex::Watched<Port> port_;
    Vex::Watched<Tide> weather_;
    Vex::Nested<BeaconWatch> beacon_;
    Orin::Ptr<Board> board_;
    ShipSmByName shipSm_;
    Vex::Child<TideSm> tideSm_;
    std::uint32_t changes_ = 0;
};

}  // namespace Harbour
