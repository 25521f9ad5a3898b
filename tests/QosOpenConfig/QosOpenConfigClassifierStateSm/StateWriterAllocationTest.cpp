#include <gmock/gmock.h>

#include <functional>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/StateWriter.h"
#include "tests/support/Allocations.h"
#include "tests/support/LiveCounts.h"
#include "tests/support/StateTree.h"

namespace QosOc {
namespace {

using Orin::String;
using ::testing::AnyOf;
using TestSupport::textOf;
using Type = Classifier::Type;
using Values = Orin::Vector<unsigned char>;

/// Lets each allocation of a writer function fail in turn.
class StateWriterAllocationTest : public TestSupport::LiveCounts {
protected:
    using Act = std::function<void(const StateDir&)>;

    /// Each failure leaves a tree that matches `between`, and the same call then comes to `result`.
    template <class Between>
    void expectConverges(const Act& prepare, const Act& act, const Between& between,
                         const std::string& result) {
        const auto prepared = [&prepare] {
            const StateDir root = State::ClassifiersDir::create();
            prepare(root);
            return root;
        };
        StateDir root = prepared();
        const std::size_t failures =
            TestSupport::failEachAllocation([&] { act(root); },
                                            [&] {
                                                EXPECT_THAT(textOf(*root), between);
                                                act(root);
                                                EXPECT_EQ(textOf(*root), result);
                                                root = prepared();
                                            });
        EXPECT_EQ(textOf(*root), result);
        EXPECT_GT(failures, 0u);
    }

    const String voice = "voice";
    const String ten = "10";
    const String gold = "gold";
    Values many{1, 2, 3, 4, 5, 6, 7, 8, 9};
    Values others{9, 8, 7, 6, 5, 4, 3, 2, 1, 0};
};

const auto kNothing = [](const StateDir&) {};

TEST_F(StateWriterAllocationTest, letsAClassifierBeAddedAgain) {
    expectConverges(
        kNothing, [this](const StateDir& root) { addClassifier(root, voice, Type::IPV6); }, "",
        "voice IPV6");
}

TEST_F(StateWriterAllocationTest, letsATermBeAddedAgain) {
    expectConverges(
        kNothing, [this](const StateDir& root) { addClassifierTerm(root, voice, Type::IPV6, ten); },
        AnyOf("", "voice IPV6", "voice IPV6 {}"), "voice IPV6 {10}");
}

TEST_F(StateWriterAllocationTest, letsAnActionBeAddedAgain) {
    expectConverges(
        kNothing,
        [this](const StateDir& root) {
            addClassifierTermAction(root, voice, Type::IPV4, ten, gold);
        },
        AnyOf("", "voice IPV4", "voice IPV4 {}"), "voice IPV4 {10 to gold}");
}

TEST_F(StateWriterAllocationTest, letsConditionsBeAddedAgain) {
    expectConverges(
        kNothing,
        [this](const StateDir& root) {
            addClassifierTermCondition(root, voice, Type::IPV6, ten, many);
        },
        AnyOf("", "voice IPV6", "voice IPV6 {}", "voice IPV6 {10}"),
        "voice IPV6 {10 when ipv6 [1, 2, 3, 4, 5, 6, 7, 8, 9]}");
}

TEST_F(StateWriterAllocationTest, leavesConditionsWholeUntilTheyAreReplaced) {
    expectConverges(
        [this](const StateDir& root) {
            addClassifierTermCondition(root, voice, Type::IPV4, ten, many);
        },
        [this](const StateDir& root) {
            addClassifierTermCondition(root, voice, Type::IPV6, ten, others);
        },
        "voice IPV4 {10 when ipv4 [1, 2, 3, 4, 5, 6, 7, 8, 9]}",
        "voice IPV4 {10 when ipv6 [9, 8, 7, 6, 5, 4, 3, 2, 1, 0]}");
}

TEST_F(StateWriterAllocationTest, needsNoMemoryToTakeThingsAway) {
    const StateDir root = State::ClassifiersDir::create();
    addClassifierTermCondition(root, voice, Type::IPV4, ten, many);
    addClassifierTermAction(root, voice, Type::IPV4, ten, gold);
    const std::size_t before = TestSupport::allocations();
    deleteClassifierTermCondition(root, voice, ten, false);
    deleteClassifierTermAction(root, voice, ten);
    deleteClassifierTermCondition(root, voice, ten, true);
    deleteClassifierTerm(root, voice, ten);
    deleteClassifier(root, voice);
    EXPECT_EQ(TestSupport::allocations(), before);
    EXPECT_EQ(textOf(*root), "");
}

}  // namespace
}  // namespace QosOc
