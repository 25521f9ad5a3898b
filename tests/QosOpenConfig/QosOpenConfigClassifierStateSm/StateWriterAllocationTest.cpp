#include <gmock/gmock.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/StateWriter.h"
#include "tests/QosOpenConfig/StateTest.h"
#include "tests/support/Allocations.h"
#include "tests/support/StateTree.h"
#include "tests/support/TraceCapture.h"

namespace QosOc {
namespace {

using Orin::String;
using ::testing::AnyOf;
using ::testing::Contains;
using TestSupport::textOf;
using Type = Classifier::Type;
using Values = Orin::Vector<unsigned char>;

/// Lets each allocation of a writer function fail in turn.
class StateWriterAllocationTest : public ::testing::Test {
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

/// Each writer function after each other, and after one that leaves a full term beside another,
/// with and without trace lines, which need memory too.
class StateWriterPairsTest : public StateTest, public ::testing::WithParamInterface<bool> {
protected:
    using Act = void (*)(const StateDir&);
    using Texts = std::vector<std::string>;

    static void addIpv4(const StateDir& root) { addClassifier(root, "voice", Type::IPV4); }
    static void addTerm(const StateDir& root) {
        addClassifierTerm(root, "voice", Type::IPV6, "10");
    }
    static void addConditions(const StateDir& root, Values values) {
        addClassifierTermCondition(root, "voice", Type::IPV6, "10", values);
    }
    static void addNeighbours(const StateDir& root) {
        addConditions(root, {1, 2, 3});
        addClassifierTermAction(root, "voice", Type::IPV6, "10", "gold");
        addClassifierTerm(root, "voice", Type::IPV6, "20");
    }
    static inline const Act kActs[] = {
        addIpv4,
        addTerm,
        addNeighbours,
        [](const StateDir& root) { addConditions(root, {}); },
        [](const StateDir& root) { addConditions(root, {46}); },
        [](const StateDir& root) {
            addConditions(root, {9, 8, 7, 6, 5, 4, 3, 2, 1});
        },
        [](const StateDir& root) {
            addClassifierTermAction(root, "voice", Type::IPV6, "10", "silver and gold");
        },
        [](const StateDir& root) { deleteClassifierTermCondition(root, "voice", "10", true); },
        [](const StateDir& root) { deleteClassifierTermCondition(root, "voice", "10", false); },
        [](const StateDir& root) { deleteClassifierTermAction(root, "voice", "10"); },
        [](const StateDir& root) { deleteClassifierTerm(root, "voice", "10"); },
        [](const StateDir& root) { deleteClassifier(root, "voice"); },
    };

    static StateDir after(const std::vector<Act>& acts) {
        const StateDir root = State::ClassifiersDir::create();
        for (const Act act : acts)
            act(root);
        return root;
    }
    /// What may be there between the beginning of an act and its end: each thing that a writer
    /// creates comes whole, the classifier before its terms before the term before what is in it.
    static Texts stepsOf(Act earlier, Act act) {
        const auto addIpv6 = [](const StateDir& root) { addClassifier(root, "voice", Type::IPV6); };
        Texts steps{textOf(*after({earlier})), textOf(*after({earlier, addIpv6})),
                    textOf(*after({earlier, addTerm})), textOf(*after({earlier, act}))};
        if (steps[1].find('{') == std::string::npos) steps.push_back(steps[1] + " {}");
        if (act == addNeighbours) {
            const auto conditions = [](const StateDir& root) { addConditions(root, {1, 2, 3}); };
            const auto action = [](const StateDir& root) {
                addClassifierTermAction(root, "voice", Type::IPV6, "10", "gold");
            };
            steps.push_back(textOf(*after({earlier, conditions})));
            steps.push_back(textOf(*after({earlier, conditions, action})));
        }
        return steps;
    }
    static void expectSteps(Act earlier, Act act) {
        const Texts steps = stepsOf(earlier, act);
        const std::string result = textOf(*after({earlier, act}));
        StateDir root = after({earlier});
        TestSupport::failEachAllocation([&] { act(root); },
                                        [&] {
                                            EXPECT_THAT(steps, Contains(textOf(*root)));
                                            act(root);
                                            EXPECT_EQ(textOf(*root), result);
                                            root = after({earlier});
                                        });
        EXPECT_EQ(textOf(*root), result);
    }
};

TEST_P(StateWriterPairsTest, leaveOneOfTheirStepsAndConverge) {
    std::optional<TestSupport::TraceCapture> traced;
    if (GetParam()) traced.emplace();
    Vex::traceSinkIs(nullptr);  // composed, and kept nowhere
    for (const Act earlier : kActs)
        for (const Act act : kActs)
            expectSteps(earlier, act);
}

INSTANTIATE_TEST_SUITE_P(Traced, StateWriterPairsTest, ::testing::Bool());

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
