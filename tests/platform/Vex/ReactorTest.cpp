#include <gtest/gtest.h>

#include <map>
#include <string>

#include "platform/Vex/Reactor.h"
#include "tests/support/HarbourMachines.h"
#include "tests/support/LiveCounts.h"
#include "tests/support/Printers.h"
#include "tests/support/RecordingSubscriber.h"

namespace Harbour {
namespace {

using TestSupport::Changes;
using TestSupport::live;
using TestSupport::RecordingSubscriber;
using Lines = std::map<std::string, std::string>;
using Names = std::vector<std::string>;

/// A port with two ships and a tide, and the root machine over it.
class ReactorTest : public ::testing::Test {
protected:
    ReactorTest() {
        anna->draughtIs(3);
        anna->cargoIs({.kind = "coal", .tons = 20});
        berta->draughtIs(4);
        port->tideIs(tide);
        tide->levelIs(11);
    }
    Orin::Ptr<PortSm> made() { return PortSm::create(port, weather, beacon, board); }
    Lines lines() const {
        Lines lines;
        for (const auto& member : board->line())
            lines.emplace(member.key.view(), member.value.view());
        return lines;
    }
    /// The lines that change while `act` runs, in order.
    template <class Act>
    std::vector<std::string> linesChangedBy(Act act) const {
        const RecordingSubscriber heard(*board);
        act();
        std::vector<std::string> names;
        for (const TestSupport::Change& change : heard.changes())
            names.emplace_back(change.key.as<Orin::String>().view());
        return names;
    }

    Orin::Ptr<Port> port = Port::create();
    Orin::Ptr<Ship> anna = port->shipIs("Anna");
    Orin::Ptr<Ship> berta = port->shipIs("Berta");
    Orin::Ptr<Tide> tide = Tide::create();
    Orin::Ptr<Tide> weather = Tide::create();
    Orin::Ptr<Tide> beacon = Tide::create();
    Orin::Ptr<Board> board = Board::create();
    const Lines kAll{
        {"Anna", "3"}, {"Anna/coal", "20"}, {"Berta", "4"}, {"tide", "11"}, {"signal", "clear"}};
};

TEST_F(ReactorTest, catchesUpWhileItIsMade) {
    const auto root = made();
    EXPECT_EQ(lines(), kAll);
}

TEST_F(ReactorTest, catchesUpInOrder) {
    Orin::Ptr<PortSm> root;
    EXPECT_EQ(linesChangedBy([&] { root = made(); }),
              (Names{"Anna", "Anna/coal", "Berta", "tide", "signal"}));
}

TEST_F(ReactorTest, isMadeWithOneOwnerAndItsNotificationsOn) {
    const auto root = made();
    EXPECT_EQ(root->userCount(), 1u);
    EXPECT_TRUE(root->notificationActive());
    EXPECT_FALSE(root->zombie());
    EXPECT_TRUE(root->isSubscribed());
}

TEST_F(ReactorTest, retainsItsInputs) {
    EXPECT_EQ(weather->userCount(), 1u);
    auto root = made();
    EXPECT_EQ(weather->userCount(), 2u);
    root = nullptr;
    EXPECT_EQ(weather->userCount(), 1u);
}

TEST_F(ReactorTest, livesWithInputsThatAreNull) {
    const auto root = PortSm::create(nullptr, nullptr, nullptr, board);
    EXPECT_FALSE(root->isSubscribed());
    root->hasNotificationActiveIs(false);
    root->hasNotificationActiveIs(true);
    EXPECT_EQ(lines(), Lines{});
}

TEST_F(ReactorTest, handlesOnlyTheAttributeThatChanged) {
    const auto root = made();
    EXPECT_EQ(linesChangedBy([&] { port->signalIs(Signal::danger); }), Names{"signal"});
    EXPECT_EQ(root->changes(), 1u);
}

TEST_F(ReactorTest, ignoresAttributesThatItDoesNotHandle) {
    const auto root = made();
    EXPECT_EQ(linesChangedBy([&] { port->isOpenIs(true); }), Names{});
    port->publishChange(9'999, nullptr);
    EXPECT_EQ(root->changes(), 0u);
}

TEST_F(ReactorTest, handsTheKeyThatChangedToItsHandler) {
    const auto root = made();
    EXPECT_EQ(linesChangedBy([&] { anna->cargoIs({.kind = "iron", .tons = 5}); }),
              Names{"Anna/iron"});
}

TEST_F(ReactorTest, tellsItsWatchedInputsApart) {
    const auto root = made();
    EXPECT_EQ(linesChangedBy([&] { weather->levelIs(9); }), Names{"weather"});
    EXPECT_EQ(linesChangedBy([&] { beacon->levelIs(9); }), Names{"beacon"});
    EXPECT_EQ(linesChangedBy([&] { tide->levelIs(9); }), Names{"tide"});
}

TEST_F(ReactorTest, makesTheChildOfAMemberThatAppears) {
    const auto root = made();
    const auto clara = port->shipIs("Clara");
    EXPECT_NE(root->shipSm().get("Clara"), nullptr);
    clara->draughtIs(8);
    EXPECT_EQ(lines()["Clara"], "8");
}

TEST_F(ReactorTest, letsTheChildOfAMemberThatLeftTakeItsStateBack) {
    const auto root = made();
    port->shipDel("Anna");
    EXPECT_EQ(root->shipSm().get("Anna"), nullptr);
    EXPECT_EQ(live<ShipSm>(), 1u);
    EXPECT_EQ(lines(), (Lines{{"Berta", "4"}, {"tide", "11"}, {"signal", "clear"}}));
}

TEST_F(ReactorTest, reactsOnceAgainToAMemberThatCameBack) {
    const auto root = made();
    port->shipDel("Anna");
    port->shipIs("Anna")->draughtIs(6);
    EXPECT_EQ(lines()["Anna"], "6");
    EXPECT_EQ(linesChangedBy([&] { anna->draughtIs(7); }), Names{}) << "the old ship is nobody's";
}

TEST_F(ReactorTest, ignoresEveryChangeWhileItCarriesTheZombieFlag) {
    const auto root = made();
    root->vexDoZombieReactors(true);
    EXPECT_TRUE(root->zombie());
    EXPECT_EQ(linesChangedBy([&] {
                  port->signalIs(Signal::danger);
                  weather->levelIs(5);
                  port->shipIs("Clara");
              }),
              Names{});
    root->vexDoZombieReactors(false);
    EXPECT_EQ(linesChangedBy([&] { port->signalIs(Signal::caution); }), Names{"signal"});
}

TEST_F(ReactorTest, handsTheZombieFlagToItsNestedReactors) {
    const auto root = made();
    root->vexDoZombieReactors(true);
    EXPECT_TRUE(root->beacon().get()->zombie());
    EXPECT_EQ(linesChangedBy([&] { beacon->levelIs(5); }), Names{});
    root->vexDoZombieReactors(false);
    EXPECT_FALSE(root->beacon().get()->zombie());
}

TEST_F(ReactorTest, leavesNestedReactorsAloneWhenItIsAZombieAlready) {
    const auto root = made();
    root->vexDoZombieReactors(true);
    root->beacon().get()->vexDoZombieReactors(false);
    root->vexDoZombieReactors(true);
    EXPECT_FALSE(root->beacon().get()->zombie());
}

TEST_F(ReactorTest, keepsTheZombieFlagToItself) {
    const auto root = made();
    root->vexDoZombieReactors(true);
    EXPECT_FALSE(root->shipSm().get("Anna")->zombie());
    EXPECT_EQ(linesChangedBy([&] { anna->draughtIs(9); }), Names{"Anna"});
}

TEST_F(ReactorTest, silencesItsWholeTree) {
    const auto root = made();
    root->hasNotificationActiveIs(false);
    EXPECT_FALSE(root->notificationActive());
    EXPECT_FALSE(port->publisher()->hasSubscribers());
    EXPECT_FALSE(weather->publisher()->hasSubscribers());
    EXPECT_FALSE(beacon->publisher()->hasSubscribers());
    EXPECT_FALSE(tide->publisher()->hasSubscribers());
    EXPECT_FALSE(anna->publisher()->hasSubscribers());
    EXPECT_FALSE(berta->publisher()->hasSubscribers());
    EXPECT_FALSE(root->shipSm().get("Anna")->notificationActive());
    EXPECT_FALSE(root->tideSm().get()->notificationActive());
}

TEST_F(ReactorTest, subscribesEachMachineOnceWhenItIsTurnedOnAgain) {
    const auto root = made();
    for (const bool active : {false, false, true, true})
        root->hasNotificationActiveIs(active);
    EXPECT_EQ(linesChangedBy([&] {
                  port->signalIs(Signal::danger);
                  anna->draughtIs(8);
                  tide->levelIs(8);
                  weather->levelIs(8);
                  beacon->levelIs(8);
              }),
              (Names{"signal", "Anna", "tide", "weather", "beacon"}));
    EXPECT_EQ(root->changes(), 2u) << "the signal and the weather";
}

TEST_F(ReactorTest, turnsOffAChildOnlyOnce) {
    const auto root = made();
    ShipSm* child = root->shipSm().get("Anna");
    child->hasNotificationActiveIs(false);
    EXPECT_FALSE(child->isSubscribed());
    root->hasNotificationActiveIs(false);
    root->hasNotificationActiveIs(true);
    EXPECT_TRUE(child->isSubscribed());
}

TEST_F(ReactorTest, leavesItsChildrenAsTheyAreWhenItIsActiveAlready) {
    const auto root = made();
    root->shipSm().get("Anna")->hasNotificationActiveIs(false);
    root->hasNotificationActiveIs(true);
    EXPECT_FALSE(root->shipSm().get("Anna")->isSubscribed());
}

TEST_F(ReactorTest, takesAllMachinesAlongAndLeavesWhatTheyWrote) {
    auto root = made();
    EXPECT_EQ(live<ShipSm>(), 2u);
    root = nullptr;
    EXPECT_EQ(live<PortSm>(), 0u);
    EXPECT_EQ(live<ShipSm>(), 0u);
    EXPECT_EQ(live<TideSm>(), 0u);
    EXPECT_EQ(lines(), kAll);
    EXPECT_FALSE(port->publisher()->hasSubscribers());
}

TEST_F(ReactorTest, dropsItsChildrenWhenItGoesThoughTheyAreHeld) {
    auto root = made();
    const auto held = Orin::Ptr<ShipSm>::sharing(root->shipSm().get("Anna"));
    root = nullptr;
    EXPECT_EQ(held->userCount(), 1u);
    EXPECT_TRUE(held->isSubscribed()) << "whoever holds a machine keeps it at work";
}

TEST_F(ReactorTest, leavesNothingBehindWhenItCannotCatchUp) {
    const auto wreck = Ship::create("wreck");
    EXPECT_THROW(ShipSm::create(wreck, board), std::runtime_error);
    EXPECT_EQ(live<ShipSm>(), 0u);
    EXPECT_EQ(wreck->userCount(), 1u);
    EXPECT_FALSE(wreck->publisher()->hasSubscribers());
}

TEST_F(ReactorTest, leavesNothingBehindWhenAChildCannotCatchUp) {
    port->shipIs("wreck");
    EXPECT_THROW(made(), std::runtime_error);
    EXPECT_EQ(live<PortSm>(), 0u);
    EXPECT_EQ(live<ShipSm>(), 0u);
    EXPECT_EQ(port->userCount(), 1u);
    EXPECT_FALSE(port->publisher()->hasSubscribers());
    EXPECT_FALSE(anna->publisher()->hasSubscribers());
    EXPECT_FALSE(beacon->publisher()->hasSubscribers());
}

TEST_F(ReactorTest, endsTheProcessWhenAHandlerThrows) {
    const auto root = made();
    EXPECT_DEATH(anna->draughtIs(ShipSm::kOverload), "overloaded");
}

TEST_F(ReactorTest, hasItsOwnFieldsWrittenThroughItsRecord) {
    const auto root = made();
    Vex::attributeNamed(root->typeData(), "changes")->write(root.get(), std::uint64_t{7});
    EXPECT_EQ(root->changes(), 7u);
}

TEST_F(ReactorTest, givesAChildAwayThroughItsRecord) {
    const auto root = made();
    const auto child = Orin::Ptr<ShipSm>::sharing(root->shipSm().get("Anna"));
    const auto& ops = *Vex::attributeNamed(root->typeData(), "shipSm")->collection;
    EXPECT_EQ(ops.del(root.get(), Orin::String("Anna")), Vex::Value(Vex::NodeRef(child)));
    EXPECT_EQ(root->shipSm().get("Anna"), nullptr);
    EXPECT_EQ(ops.del(root.get(), Orin::String("Anna")), Vex::Value());
}

TEST_F(ReactorTest, knowsTheInputsThatItWasMadeFrom) {
    const auto root = made();
    EXPECT_TRUE(root->isMadeFrom(Orin::Ptr<const Port>(port), Orin::Ptr<const Tide>(weather),
                                 Orin::Ptr<const Tide>(beacon), board));
    EXPECT_FALSE(root->isMadeFrom(Orin::Ptr<const Port>(port), Orin::Ptr<const Tide>(tide),
                                  Orin::Ptr<const Tide>(beacon), board));
    EXPECT_FALSE(root->isMadeFrom(Orin::Ptr<const Port>(port), Orin::Ptr<const Tide>(weather),
                                  Orin::Ptr<const Tide>(tide), board));
    EXPECT_FALSE(root->isMadeFrom(Orin::Ptr<const Port>(port), Orin::Ptr<const Tide>(weather),
                                  Orin::Ptr<const Tide>(beacon), Board::create()));
}

}  // namespace
}  // namespace Harbour
