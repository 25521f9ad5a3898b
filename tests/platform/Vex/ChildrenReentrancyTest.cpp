#include "tests/platform/Vex/ChildrenReentrancyTest.h"

namespace Harbour {
namespace {

TEST_F(ChildrenReentrancyTest, makesOneOfTheSameNameOnce) {
    const DiverSm* inner = nullptr;
    DiverSm::whenMade = [&] { inner = make(anna); };
    EXPECT_EQ(make(anna), inner);
    EXPECT_EQ(live(), 1u);
}

TEST_F(ChildrenReentrancyTest, keepsTheOneThatIsMadeAfterAllWentMeanwhile) {
    make(berta);
    const DiverSm* inner = nullptr;
    DiverSm::whenMade = [&] {
        divers.clear();
        inner = make(anna);
    };
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

}  // namespace
}  // namespace Harbour
