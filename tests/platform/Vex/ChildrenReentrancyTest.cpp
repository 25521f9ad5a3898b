#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <utility>

#include "platform/Vex/Child.h"
#include "platform/Vex/Children.h"
#include "platform/Vex/Derive.h"
#include "platform/Vex/Reactor.h"
#include "tests/support/Harbour.h"
#include "tests/support/LiveCounts.h"
#include "tests/support/Printers.h"

namespace Harbour {
namespace {

using ShipPtr = Orin::Ptr<const Ship>;

/// Has something done once, when the next one is made and when the next one takes its state back.
class DiverSm final : public Vex::Reactor<DiverSm> {
public:
    static constexpr std::string_view kTypeName = "Harbour::DiverSm";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() { return std::tuple{Vex::given("ship", 1, &DiverSm::ship_)}; }
    explicit DiverSm(const ShipPtr& ship) : ship_(ship) { start(); }
    ~DiverSm() override { stop(); }
    void handleInitialized() { act(whenMade); }
    void doPrepareToDie() { act(whenDying); }

    static inline std::function<void()> whenMade;
    static inline std::function<void()> whenDying;

private:
    static void act(std::function<void()>& what) {
        if (const auto once = std::exchange(what, {})) once();
    }

    ShipPtr ship_;
};
constinit const Vex::TypeRecord DiverSm::kTypeRecord = Vex::recordOf<DiverSm>();

/// Children that come and go while one of them does.
class ChildrenReentrancyTest : public ::testing::Test {
protected:
    const DiverSm* make(const ShipPtr& ship) {
        return divers.createOrKeep("ship", &Ship::name, ship).get();
    }
    std::size_t live() const { return TestSupport::live<DiverSm>(); }

    const ShipPtr anna = Ship::create("Anna");
    const ShipPtr berta = Ship::create("Berta");
    Vex::Children<Orin::String, DiverSm, 5> divers;
};

TEST_F(ChildrenReentrancyTest, makesOneOfTheSameNameOnce) {
    const DiverSm* inner = nullptr;
    DiverSm::whenMade = [&] { inner = make(anna); };
    EXPECT_EQ(make(anna), inner);
    EXPECT_EQ(live(), 1u);
}

TEST_F(ChildrenReentrancyTest, makesOneWithinAnother) {
    DiverSm::whenMade = [&] { make(berta); };
    const DiverSm* made = make(anna);
    EXPECT_EQ(made, divers.get("Anna"));
    EXPECT_NE(divers.get("Berta"), nullptr);
    EXPECT_EQ(live(), 2u);
}

TEST_F(ChildrenReentrancyTest, removesOneThatGoesMeanwhile) {
    make(anna);
    DiverSm::whenDying = [&] { divers.remove("Anna"); };
    divers.prepareAndRemove("Anna");
    EXPECT_EQ(live(), 0u);
}

TEST_F(ChildrenReentrancyTest, removesOneThatGoesWithAllMeanwhile) {
    make(anna);
    make(berta);
    DiverSm::whenDying = [&] { divers.clear(); };
    divers.prepareAndRemove("Anna");
    EXPECT_EQ(live(), 0u);
}

TEST_F(ChildrenReentrancyTest, removesOneWhenAnotherComesMeanwhile) {
    make(anna);
    DiverSm::whenDying = [&] { make(berta); };
    divers.prepareAndRemove("Anna");
    EXPECT_EQ(divers.get("Anna"), nullptr);
    EXPECT_EQ(live(), 1u);
}

TEST_F(ChildrenReentrancyTest, keepsTheOneThatComesInItsPlace) {
    make(anna);
    const DiverSm* other = nullptr;
    DiverSm::whenDying = [&] {
        divers.remove("Anna");
        other = make(Ship::create("Anna"));
    };
    divers.prepareAndRemove("Anna");
    EXPECT_EQ(divers.get("Anna"), other);
    EXPECT_EQ(live(), 1u);
}

TEST_F(ChildrenReentrancyTest, keepsTheOnlyChildThatComesInTheOthersPlace) {
    Vex::Child<DiverSm> child;
    child.createOrReplace(anna);
    DiverSm::whenDying = [&] { child.createOrReplace(berta); };
    child.prepareAndRemove();
    ASSERT_TRUE(child);
    EXPECT_TRUE(child.get()->isMadeFrom(berta));
}

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
