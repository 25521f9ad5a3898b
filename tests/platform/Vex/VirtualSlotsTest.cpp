#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/HarbourMachines.h"
#include "tests/support/VtableLayout.h"

namespace Harbour {
namespace {

using ::testing::ElementsAre;
using TestSupport::slotOf;
using TestSupport::virtualOperations;

/// The order is part of what plug-ins are compiled against.
class VirtualSlotsTest : public ::testing::Test {
protected:
    Orin::Ptr<Board> board = Board::create();
    Orin::Ptr<Tide> tide = Tide::create();
};

TEST_F(VirtualSlotsTest, ofAMachineEndWithItsTypeAndItsZombieReactors) {
    const auto machine = TideSm::create(tide, board);
    EXPECT_THAT(virtualOperations(machine.get()),
                ElementsAre("~", "delete ~", "Orin::Node::lastUserGone", "Orin::Node::publisher",
                            "Vex::Reactor<Harbour::TideSm>::typeData",
                            "Vex::Reactor<Harbour::TideSm>::vexDoZombieReactors"));
}

TEST_F(VirtualSlotsTest, ofAMachineAreWhereItsCallersLook) {
    EXPECT_EQ(slotOf(&TideSm::lastUserGone), 2u);
    EXPECT_EQ(slotOf(&TideSm::publisher), 3u);
    EXPECT_EQ(slotOf(&TideSm::typeData), 4u);
    EXPECT_EQ(slotOf(&TideSm::vexDoZombieReactors), 5u);
}

TEST_F(VirtualSlotsTest, ofAnEntityEndWithItsType) {
    EXPECT_THAT(
        virtualOperations(tide.get()),
        ElementsAre("~", "delete ~", "Orin::Node::lastUserGone", "Vex::PublishingNode::publisher",
                    "Vex::Entity<Harbour::Tide>::typeData"));
}

TEST_F(VirtualSlotsTest, ofANestedReactorEndWithItsHandlerAndItsZombieReactors) {
    const auto machine = PortSm::create(nullptr, nullptr, tide, board);
    EXPECT_THAT(virtualOperations(machine->beacon().get()),
                ElementsAre("~", "delete ~", "Harbour::PortSm::BeaconWatch::onAttribute",
                            "Vex::NotifieeConst<Harbour::Tide>::vexDoZombieReactors"));
}

TEST_F(VirtualSlotsTest, ofANestedReactorAreWhereItsCallersLook) {
    EXPECT_EQ(slotOf(&PortSm::BeaconWatch::onAttribute), 2u);
    EXPECT_EQ(slotOf(&PortSm::BeaconWatch::vexDoZombieReactors), 3u);
}

}  // namespace
}  // namespace Harbour
