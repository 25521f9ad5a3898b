#include <gtest/gtest.h>

#include <stdexcept>
#include <utility>

#include "platform/Vex/Nested.h"
#include "platform/Vex/NotifieeConst.h"
#include "tests/support/Harbour.h"
#include "tests/support/Printers.h"

namespace Harbour {
namespace {

/// Counts the changes of a tide; throws at a level of 13.
class Gauge final : public Vex::NotifieeConst<Tide> {
public:
    using NotifieeConst::NotifieeConst;
    void onAttribute(Orin::AttributeId attributeId, const void*) override {
        if (attributeId == Tide::kLevel.id) ++changes;
        if (notifier()->level() == 13) throw std::runtime_error("flooded");
    }

    int changes = 0;
};

class NotifieeConstTest : public ::testing::Test {
protected:
    Orin::Ptr<Tide> tide = Tide::create();
    Orin::Ptr<Tide> spring = Tide::create();
    Gauge gauge{tide};
};

TEST_F(NotifieeConstTest, hearsItsNotifierFromTheStart) {
    tide->levelIs(1);
    EXPECT_EQ(gauge.changes, 1);
    EXPECT_TRUE(gauge.notificationActive());
    EXPECT_FALSE(gauge.zombie());
}

TEST_F(NotifieeConstTest, fallsSilentWhenItGoes) {
    {
        const Gauge passing(spring);
        EXPECT_TRUE(spring->publisher()->hasSubscribers());
    }
    EXPECT_FALSE(spring->publisher()->hasSubscribers());
    EXPECT_EQ(spring->userCount(), 1u);
}

TEST_F(NotifieeConstTest, followsAnotherNotifier) {
    gauge.notifierIs(spring);
    tide->levelIs(1);
    EXPECT_EQ(gauge.changes, 0) << "it is told of nothing when it changes over";
    spring->levelIs(1);
    EXPECT_EQ(gauge.changes, 1);
    EXPECT_EQ(gauge.notifier(), spring);
    EXPECT_EQ(tide->userCount(), 1u);
}

TEST_F(NotifieeConstTest, mayFollowNothing) {
    gauge.notifierIs(nullptr);
    gauge.hasNotificationActiveIs(false);
    gauge.hasNotificationActiveIs(true);
    EXPECT_EQ(gauge.notifier(), nullptr);
    EXPECT_FALSE(tide->publisher()->hasSubscribers());
    gauge.notifierIs(tide);
    tide->levelIs(1);
    EXPECT_EQ(gauge.changes, 1);
}

TEST_F(NotifieeConstTest, staysSilentWhileTurnedOff) {
    gauge.hasNotificationActiveIs(false);
    EXPECT_FALSE(gauge.notificationActive());
    tide->levelIs(1);
    gauge.notifierIs(spring);
    spring->levelIs(1);
    EXPECT_EQ(gauge.changes, 0);
    gauge.hasNotificationActiveIs(true);
    gauge.hasNotificationActiveIs(true);
    spring->levelIs(2);
    EXPECT_EQ(gauge.changes, 1);
}

TEST_F(NotifieeConstTest, endsTheProcessWhenItsHandlerThrows) {
    EXPECT_DEATH(tide->levelIs(13), "flooded");
}

class NestedTest : public NotifieeConstTest {
protected:
    Vex::Nested<Gauge> nested;
};

TEST_F(NestedTest, holdsNoReactorAtFirst) {
    EXPECT_EQ(nested.get(), nullptr);
    EXPECT_EQ(std::as_const(nested).get(), nullptr);
    EXPECT_EQ(nested.notifier(), nullptr);
    nested.activeIs(false);
    nested.zombieIs(true);
    EXPECT_TRUE(nested == nullptr);
}

TEST_F(NestedTest, equalsWhatItsReactorFollows) {
    nested.create(tide);
    EXPECT_TRUE(nested == Orin::Ptr<const Tide>(tide));
    EXPECT_FALSE(nested == Orin::Ptr<const Tide>(spring));
}

TEST_F(NestedTest, turnsItsReactorOffAndOn) {
    nested.create(spring);
    nested.activeIs(false);
    EXPECT_FALSE(spring->publisher()->hasSubscribers());
    nested.activeIs(true);
    EXPECT_TRUE(spring->publisher()->hasSubscribers());
}

TEST_F(NestedTest, marksItsReactor) {
    nested.create(spring);
    nested.zombieIs(true);
    EXPECT_TRUE(nested.get()->zombie());
    EXPECT_EQ(std::as_const(nested).get(), nested.get());
    nested.zombieIs(false);
    EXPECT_FALSE(nested.get()->zombie());
}

TEST_F(NestedTest, dropsItsReactor) {
    nested.create(spring);
    nested.clear();
    EXPECT_EQ(nested.get(), nullptr);
    EXPECT_FALSE(spring->publisher()->hasSubscribers());
}

}  // namespace
}  // namespace Harbour
