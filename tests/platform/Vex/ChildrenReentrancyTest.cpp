#include <gtest/gtest.h>

#include <functional>
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

}  // namespace
}  // namespace Harbour
