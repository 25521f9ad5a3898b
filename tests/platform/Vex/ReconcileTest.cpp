#include <stdexcept>

#include "tests/platform/Vex/ChildrenReentrancyTest.h"

namespace Harbour {
namespace {

/// The ships of a port, each with a child; the port changes while one of its children is made or
/// takes its state back.
class ReconcileTest : public ChildrenReentrancyTest {
protected:
    void handle(const char* name) {
        divers.reconcile(name, ships, [this](const ShipPtr& ship) { make(ship); });
    }
    void enter(const Orin::Ptr<Ship>& ship) {
        if (Orin::Ptr<Ship>* held = ships.find("Anna"))
            *held = ship;
        else
            ships.enter("Anna", ship);
        handle("Anna");
    }
    void leave() {
        ships.remove("Anna");
        handle("Anna");
    }
    /// The one child is that of this ship.
    void expectChildOf(const Orin::Ptr<Ship>& ship) {
        ASSERT_NE(divers.get("Anna"), nullptr);
        EXPECT_TRUE(divers.get("Anna")->isMadeFrom(ShipPtr(ship)));
        EXPECT_EQ(live(), 1u);
    }

    Port::ShipByName ships;
    const Orin::Ptr<Ship> first = Ship::create("Anna");
    const Orin::Ptr<Ship> second = Ship::create("Anna");
};

TEST_F(ReconcileTest, removesAChildWhoseMemberLeavesWhileItIsMade) {
    bool tookBack = false;
    DiverSm::whenMade = [&] { leave(); };
    DiverSm::whenDying = [&] { tookBack = true; };
    enter(first);
    EXPECT_EQ(live(), 0u);
    EXPECT_TRUE(tookBack);
}

TEST_F(ReconcileTest, makesTheChildAnewWhoseMemberLeavesAndComesBackWhileItIsMade) {
    bool tookBack = false;
    DiverSm::whenMade = [&] {
        leave();
        enter(first);
    };
    DiverSm::whenDying = [&] { tookBack = true; };
    enter(first);
    expectChildOf(first);
    EXPECT_TRUE(tookBack);
}

TEST_F(ReconcileTest, makesTheChildOfTheMemberThatComesInItsPlaceMeanwhile) {
    DiverSm::whenMade = [&] {
        leave();
        enter(second);
    };
    enter(first);
    expectChildOf(second);
}

TEST_F(ReconcileTest, makesTheChildOfTheMemberThatReplacesItMeanwhile) {
    DiverSm::whenMade = [&] { enter(second); };
    enter(first);
    expectChildOf(second);
}

TEST_F(ReconcileTest, keepsAChildWhoseMemberIsOnlyPublishedAgain) {
    bool tookBack = false;
    DiverSm::whenMade = [&] { handle("Anna"); };
    DiverSm::whenDying = [&] { tookBack = true; };
    enter(first);
    expectChildOf(first);
    EXPECT_FALSE(tookBack);
    DiverSm::whenDying = nullptr;
}

TEST_F(ReconcileTest, makesTheChildOfAMemberThatComesWhileTheOldOneTakesItsStateBack) {
    enter(first);
    DiverSm::whenDying = [&] { enter(second); };
    leave();
    expectChildOf(second);
}

TEST_F(ReconcileTest, makesTheChildOfTheSameMemberThatComesBackWhileItTakesItsStateBack) {
    enter(first);
    const auto* before = divers.get("Anna");
    const auto held = Orin::Ptr<const DiverSm>::sharing(before);
    DiverSm::whenDying = [&] { enter(first); };
    leave();
    ASSERT_NE(divers.get("Anna"), nullptr);
    EXPECT_NE(divers.get("Anna"), before);
}

TEST_F(ReconcileTest, removesAChildWhoseParentTakesItsStateBackWhileItIsMade) {
    bool tookBack = false;
    DiverSm::whenMade = [&] { divers.prepareAndRemove("Anna"); };
    DiverSm::whenDying = [&] { tookBack = true; };
    enter(first);
    EXPECT_EQ(live(), 0u);
    EXPECT_TRUE(tookBack);
}

TEST_F(ReconcileTest, makesNoChildForAMemberThatComesWhileTheParentTakesItsStateBack) {
    enter(first);
    DiverSm::whenDying = [&] {
        leave();
        enter(second);
    };
    divers.prepareAndRemove("Anna");
    EXPECT_EQ(live(), 0u);
}

TEST_F(ReconcileTest, worksAgainAfterAChildThatCouldNotBeMade) {
    DiverSm::whenMade = [] { throw std::runtime_error("no room"); };
    EXPECT_THROW(enter(first), std::runtime_error);
    EXPECT_EQ(live(), 0u);
    handle("Anna");
    expectChildOf(first);
}

/// The same for an only child.
class OnlyChildReconcileTest : public ChildrenReentrancyTest {
protected:
    bool memberIs(const Orin::Ptr<Ship>& ship) {
        member = ship;
        return child.reconcile(member, [this](const ShipPtr& now) { child.createOrReplace(now); });
    }
    void expectChildOf(const Orin::Ptr<Ship>& ship) {
        ASSERT_TRUE(child);
        EXPECT_TRUE(child.get()->isMadeFrom(ShipPtr(ship)));
        EXPECT_EQ(live(), 1u);
    }

    const Orin::Ptr<Ship> first = Ship::create("Anna");
    const Orin::Ptr<Ship> second = Ship::create("Berta");
    Orin::Ptr<Ship> member;
    Vex::Child<DiverSm> child;
};

TEST_F(OnlyChildReconcileTest, isRemovedWhenItsMemberLeavesWhileItIsMade) {
    bool tookBack = false;
    DiverSm::whenMade = [&] { memberIs(nullptr); };
    DiverSm::whenDying = [&] { tookBack = true; };
    EXPECT_TRUE(memberIs(first));
    EXPECT_FALSE(child);
    EXPECT_TRUE(tookBack);
    EXPECT_EQ(live(), 0u);
}

TEST_F(OnlyChildReconcileTest, isMadeAnewWhenItsMemberLeavesAndComesBackMeanwhile) {
    bool tookBack = false;
    DiverSm::whenMade = [&] {
        memberIs(nullptr);
        memberIs(first);
    };
    DiverSm::whenDying = [&] { tookBack = true; };
    memberIs(first);
    expectChildOf(first);
    EXPECT_TRUE(tookBack);
}

TEST_F(OnlyChildReconcileTest, isThatOfTheMemberThatReplacesItMeanwhile) {
    DiverSm::whenMade = [&] { memberIs(second); };
    memberIs(first);
    expectChildOf(second);
}

TEST_F(OnlyChildReconcileTest, isThatOfAMemberThatComesWhileTheOldOneTakesItsStateBack) {
    memberIs(first);
    DiverSm::whenDying = [&] { memberIs(second); };
    memberIs(nullptr);
    expectChildOf(second);
}

TEST_F(OnlyChildReconcileTest, isRemovedWhenItsParentTakesItsStateBackWhileItIsMade) {
    DiverSm::whenMade = [&] { child.prepareAndRemove(); };
    EXPECT_FALSE(memberIs(first));
    EXPECT_FALSE(child);
    EXPECT_EQ(live(), 0u);
}

TEST_F(OnlyChildReconcileTest, isNotMadeAgainWhileItsParentTakesItsStateBack) {
    memberIs(first);
    DiverSm::whenDying = [&] { memberIs(second); };
    child.prepareAndRemove();
    EXPECT_FALSE(child);
    EXPECT_EQ(live(), 0u);
}

}  // namespace
}  // namespace Harbour
