#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Vex/Children.h"
#include "tests/support/HarbourMachines.h"
#include "tests/support/LiveCounts.h"
#include "tests/support/Printers.h"
#include "tests/support/RecordingSubscriber.h"

namespace Harbour {
namespace {

using ::testing::HasSubstr;
using ::testing::ThrowsMessage;
using TestSupport::live;

/// A root machine without inputs, to whose collections the tests add.
class ChildrenTest : public ::testing::Test {
protected:
    Orin::Ptr<Ship> anna = Ship::create("Anna");
    Orin::Ptr<Ship> berta = Ship::create("Berta");
    Orin::Ptr<Board> board = Board::create();
    Orin::Ptr<PortSm> root = PortSm::create(nullptr, nullptr, nullptr, board);
};

TEST_F(ChildrenTest, makesAChildUnderTheKeyOfItsFirstInput) {
    const auto child = root->shipSmIs(anna, board);
    EXPECT_EQ(root->shipSm().get("Anna"), child.get());
    EXPECT_EQ(root->shipSm().get("Berta"), nullptr);
    EXPECT_TRUE(child->notificationActive());
}

TEST_F(ChildrenTest, refusesANullInputAndNamesTheAttribute) {
    EXPECT_THAT([&] { root->shipSmIs(nullptr, board); },
                ThrowsMessage<Vex::MutatorArgNullPointerException>(HasSubstr("ship")));
    EXPECT_EQ(live<ShipSm>(), 0u);
}

TEST_F(ChildrenTest, keepsTheChildOfTheSameInputs) {
    const auto child = root->shipSmIs(anna, board);
    EXPECT_EQ(root->shipSmIs(anna, board), child);
    EXPECT_EQ(live<ShipSm>(), 1u);
}

TEST_F(ChildrenTest, refusesOtherInputsUnderTheSameKeyAndNamesTheAttribute) {
    const auto child = root->shipSmIs(anna, board);
    const auto another = Ship::create("Anna");
    EXPECT_THAT([&] { root->shipSmIs(another, board); },
                ThrowsMessage<Vex::MutatorReinstantiatingException>(HasSubstr("ship")));
    EXPECT_THROW(root->shipSmIs(anna, Board::create()), Vex::MutatorReinstantiatingException);
    EXPECT_EQ(root->shipSm().get("Anna"), child.get());
}

TEST_F(ChildrenTest, keepsNothingOfAChildThatCouldNotBeMade) {
    EXPECT_THROW(root->shipSmIs(Ship::create("wreck"), board), std::runtime_error);
    EXPECT_TRUE(root->shipSm().members().empty());
}

TEST_F(ChildrenTest, givesBackTheChildThatItRemoves) {
    auto child = root->shipSmIs(anna, board);
    EXPECT_EQ(root->shipSmDel("Anna"), child);
    EXPECT_EQ(root->shipSm().get("Anna"), nullptr);
    EXPECT_EQ(child->userCount(), 1u);
    child = nullptr;
    EXPECT_EQ(live<ShipSm>(), 0u);
}

TEST_F(ChildrenTest, givesBackNullWhereThereIsNoChild) {
    EXPECT_EQ(root->shipSmDel("Anna"), nullptr);
}

TEST_F(ChildrenTest, dropsAllChildren) {
    root->shipSmIs(anna, board);
    root->shipSmIs(berta, board);
    root->shipSmDelAll();
    EXPECT_TRUE(root->shipSm().members().empty());
    EXPECT_EQ(live<ShipSm>(), 0u);
}

TEST_F(ChildrenTest, leavesOnTheBoardWhatRemovedChildrenWrote) {
    root->shipSmIs(anna, board);
    root->shipSmDel("Anna");
    EXPECT_NE(board->line().find("Anna"), nullptr);
}

class ChildTest : public ChildrenTest {
protected:
    Orin::Ptr<Tide> tide = Tide::create();
    Orin::Ptr<Tide> spring = Tide::create();
};

TEST_F(ChildTest, isKeptForTheSameInputs) {
    const auto child = root->tideSmIs(tide, board);
    EXPECT_EQ(root->tideSmIs(tide, board), child);
}

TEST_F(ChildTest, isDroppedAsItIs) {
    Vex::Child<TideSm> child;
    const auto held = child.createOrReplace(tide, board);
    child.clear();
    EXPECT_EQ(child.get(), nullptr);
    EXPECT_TRUE(held->notificationActive());
    EXPECT_EQ(held->userCount(), 1u);
}

TEST_F(ChildTest, isReplacedForOtherInputsAndSilenced) {
    const auto old = root->tideSmIs(tide, board);
    const auto child = root->tideSmIs(spring, board);
    EXPECT_NE(child, old);
    EXPECT_EQ(root->tideSm().get(), child.get());
    EXPECT_FALSE(old->notificationActive());
    EXPECT_FALSE(tide->publisher()->hasSubscribers());
    EXPECT_TRUE(child->isSubscribed());
}

TEST_F(ChildTest, isActiveBeforeTheOldOneFallsSilent) {
    root->tideSmIs(tide, board);
    const TestSupport::RecordingSubscriber heard(*board);
    spring->levelIs(7);
    root->tideSmIs(spring, board);
    EXPECT_EQ(*board->line().find("tide"), "7");
    EXPECT_EQ(heard.changes().size(), 1u) << "the new one caught up, the old took nothing back";
}

TEST_F(ChildTest, isSilencedWhenItIsRemoved) {
    const auto child = root->tideSmIs(tide, board);
    EXPECT_EQ(root->tideSmDel(), child);
    EXPECT_FALSE(root->tideSm());
    EXPECT_FALSE(child->isSubscribed());
    EXPECT_EQ(root->tideSmDel(), nullptr);
}

TEST_F(ChildTest, takesItsStateBackWhenItsInputLeaves) {
    const auto port = Port::create();
    port->tideIs(tide);
    const auto watching = PortSm::create(port, nullptr, nullptr, board);
    ASSERT_TRUE(watching->tideSm());
    port->tideIs(nullptr);
    EXPECT_FALSE(watching->tideSm());
    EXPECT_EQ(board->line().find("tide"), nullptr) << "it took its state back";
    EXPECT_EQ(live<TideSm>(), 0u);
}

}  // namespace
}  // namespace Harbour
