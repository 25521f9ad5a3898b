#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "platform/Vex/Derive.h"
#include "tests/support/Allocations.h"
#include "tests/support/HarbourMachines.h"
#include "tests/support/LiveCounts.h"
#include "tests/support/Printers.h"

namespace Harbour {
namespace {

using TestSupport::live;

/// Forgets to start.
class LateSm final : public Vex::Reactor<LateSm> {
public:
    static constexpr std::string_view kTypeName = "Harbour::LateSm";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() { return std::tuple{Vex::given("board", 1, &LateSm::board_)}; }
    explicit LateSm(const Orin::Ptr<Board>& board) : board_(board) {}
    ~LateSm() override { stop(); }
    void handleInitialized() {}

private:
    Orin::Ptr<Board> board_;
};
constinit const Vex::TypeRecord LateSm::kTypeRecord = Vex::recordOf<LateSm>();

/// Forgets to stop.
class RestlessSm final : public Vex::Reactor<RestlessSm> {
public:
    static constexpr std::string_view kTypeName = "Harbour::RestlessSm";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{Vex::given("board", 1, &RestlessSm::board_)};
    }
    explicit RestlessSm(const Orin::Ptr<Board>& board) : board_(board) { start(); }
    void handleInitialized() {}

private:
    Orin::Ptr<Board> board_;
};
constinit const Vex::TypeRecord RestlessSm::kTypeRecord = Vex::recordOf<RestlessSm>();

TEST(ReactorRulesTest, stopTheProgramWhenAConstructorDoesNotStart) {
    EXPECT_DEATH(LateSm::create(Board::create()),
                 "platform/Vex/Reactor:[0-9]+: .*create.*: "
                 "Assertion `constructor ends with start\\(\\)' failed\\.");
}

TEST(ReactorRulesTest, stopTheProgramWhenADestructorDoesNotStop) {
    EXPECT_DEATH(RestlessSm::create(Board::create()),
                 "platform/Vex/Reactor:[0-9]+: .*~Reactor.*: "
                 "Assertion `destructor begins with stop\\(\\)' failed\\.");
}

/// What went, in order.
std::vector<std::string> goings;

/// An input that tells when it goes.
class Witness final : public Vex::Entity<Witness> {
public:
    static constexpr std::string_view kTypeName = "Harbour::Witness";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() { return std::tuple{}; }
    ~Witness() override { goings.emplace_back("input"); }
};
constinit const Vex::TypeRecord Witness::kTypeRecord = Vex::recordOf<Witness>();

/// A child that tells when it goes, and whether anybody listened to the tide then.
class CrewSm final : public Vex::Reactor<CrewSm> {
public:
    static constexpr std::string_view kTypeName = "Harbour::CrewSm";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{Vex::given("tide", 1, &CrewSm::tide_),
                          Vex::own("name", 2, &CrewSm::name_)};
    }
    explicit CrewSm(const Orin::Ptr<const Tide>& tide) : tide_(tide) { start(); }
    ~CrewSm() override {
        stop();
        const bool isHeard = tide_->publisher()->hasSubscribers();
        goings.push_back(std::string(name_.view()) + (isHeard ? ", still subscribed" : ""));
    }
    void nameIs(const Orin::String& name) { name_ = name; }
    void handleInitialized() {}
    void doPrepareToDie() {}

private:
    Orin::Ptr<const Tide> tide_;
    Orin::String name_;
};
constinit const Vex::TypeRecord CrewSm::kTypeRecord = Vex::recordOf<CrewSm>();

class CaptainSm final : public Vex::Reactor<CaptainSm> {
public:
    static constexpr std::string_view kTypeName = "Harbour::CaptainSm";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::watched("tide", 1, &CaptainSm::tide_, tideDispatch),
            Vex::given("witness", 2, &CaptainSm::witness_),
            Vex::own("crew", 3, &CaptainSm::crew_),
            Vex::own("mate", 4, &CaptainSm::mate_),
        };
    }
    CaptainSm(const Orin::Ptr<const Tide>& tide, const Orin::Ptr<Witness>& witness)
        : tide_(tide), witness_(witness) {
        start();
    }
    ~CaptainSm() override { stop(); }
    void handleInitialized() {
        mate_.createOrReplace(tide_.notifier())->nameIs("mate");
        crew_.createOrKeep("crew", &Tide::level, tide_.notifier())->nameIs("crew");
    }
    void handleLevel() {}
    static constexpr Orin::Dispatch tideDispatch =
        Vex::dispatchTo<CaptainSm, Vex::On<Tide::kLevel, &CaptainSm::handleLevel>>;

private:
    Vex::Watched<Tide> tide_;
    Orin::Ptr<Witness> witness_;
    Vex::Children<std::uint32_t, CrewSm, 1> crew_;
    Vex::Child<CrewSm> mate_;
};
constinit const Vex::TypeRecord CaptainSm::kTypeRecord = Vex::recordOf<CaptainSm>();

class ReactorOrderTest : public ::testing::Test {};

TEST_F(ReactorOrderTest, ofTheEndIsSubscriptionsThenChildrenThenInputs) {
    const auto tide = Tide::create();
    goings.clear();
    auto captain = CaptainSm::create(Orin::Ptr<const Tide>(tide), Witness::create());
    EXPECT_TRUE(tide->publisher()->hasSubscribers());
    captain = nullptr;
    EXPECT_EQ(goings, (std::vector<std::string>{"crew", "mate", "input"}));
}

/// A whole tree over inputs that are there already; each allocation of its making fails in turn.
class ReactorAllocationTest : public ::testing::Test {
protected:
    ReactorAllocationTest() {
        anna->draughtIs(3);
        anna->cargoIs({.kind = "coal", .tons = 20});
        port->tideIs(tide);
        const Orin::Ptr<PortSm> warmUp = made();  // the board's lines stay
    }
    Orin::Ptr<PortSm> made() { return PortSm::create(port, tide, tide, board); }
    void expectNothingLeft() const {
        EXPECT_EQ(live<PortSm>() + live<ShipSm>() + live<TideSm>(), 0u);
        EXPECT_EQ(TestSupport::liveCounts(), before);
        EXPECT_FALSE(port->publisher()->hasSubscribers());
        EXPECT_FALSE(tide->publisher()->hasSubscribers());
        EXPECT_FALSE(anna->publisher()->hasSubscribers());
        EXPECT_EQ(board->userCount(), 1u);
    }

    Orin::Ptr<Port> port = Port::create();
    Orin::Ptr<Ship> anna = port->shipIs("Anna");
    Orin::Ptr<Tide> tide = Tide::create();
    Orin::Ptr<Board> board = Board::create();
    std::map<std::string, std::size_t> before;
};

TEST_F(ReactorAllocationTest, leavesNothingBehindWhereverItFails) {
    before = TestSupport::liveCounts();
    const std::size_t failures =
        TestSupport::failEachAllocation([&] { made(); }, [&] { expectNothingLeft(); });
    EXPECT_GT(failures, 5u);
}

TEST_F(ReactorAllocationTest, leavesTheParentAsItWasWhenAKeyedCreatorFails) {
    const auto root = PortSm::create(nullptr, nullptr, nullptr, board);
    before = TestSupport::liveCounts();
    const std::size_t failures =
        TestSupport::failEachAllocation([&] { root->shipSmIs(anna, board); },
                                        [&] {
                                            EXPECT_EQ(live<ShipSm>(), 0u);
                                            EXPECT_EQ(root->shipSm().members().size(), 0u);
                                            EXPECT_FALSE(anna->publisher()->hasSubscribers());
                                        });
    EXPECT_GT(failures, 2u);
    EXPECT_EQ(root->shipSm().members().size(), 1u);
}

TEST_F(ReactorAllocationTest, keepsTheOldChildWhenANewOneFails) {
    const auto root = PortSm::create(nullptr, nullptr, nullptr, board);
    const auto old = root->tideSmIs(Tide::create(), board);
    TestSupport::failEachAllocation([&] { root->tideSmIs(tide, board); },
                                    [&] {
                                        EXPECT_EQ(root->tideSm().get(), old.get());
                                        EXPECT_TRUE(old->isSubscribed());
                                        EXPECT_FALSE(tide->publisher()->hasSubscribers());
                                    });
    EXPECT_NE(root->tideSm().get(), old.get());
}

TEST_F(ReactorAllocationTest, leavesTheEntityAsItWasWhenAMemberCannotEnter) {
    for (int i = 0; i < 6; ++i) {
        const Orin::String kind(std::string_view("kind " + std::to_string(i)));
        const Cargo cargo{.kind = kind, .tons = 1, .holds = {1, 2, 3, 4, 5, 6, 7, 8, 9}};
        TestSupport::failEachAllocation([&] { anna->cargoIs(cargo); },
                                        [&] { EXPECT_EQ(anna->cargo().find(kind), nullptr); });
        ASSERT_NE(anna->cargo().find(kind), nullptr);
        EXPECT_EQ(*anna->cargo().find(kind), cargo);
    }
}

}  // namespace
}  // namespace Harbour
