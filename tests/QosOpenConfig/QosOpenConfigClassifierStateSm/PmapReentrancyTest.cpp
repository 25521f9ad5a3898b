#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/ReentrancyTest.h"

namespace QosOc {
namespace {

using Orin::String;
using Type = Classifier::Type;

/// The inputs of a policy map change while its terms and actions are written.
class PmapReentrancyTest : public ReentrancyTest {};

INSTANTIATE_TEST_SUITE_P(Traced, PmapReentrancyTest, kTraceOffAndOn, traceName);

TEST_P(PmapReentrancyTest, asksForTheGroupOnceTheTermIsThere) {
    const auto pmap = addPolicyMap("openconfig:voice:5");
    start();
    const Once once(terms(), [&] { groups->tcIs("fifth", 5); });
    pmap->classIs("openconfig:voice:10", classTo(5));
    pmap->versionIs(1);
    EXPECT_EQ(state(), "voice IPV4 {10 to fifth, 5 to gold}");
}

TEST_P(PmapReentrancyTest, survivesTheEndOfThePolicyMapThatIsBeingWritten) {
    const auto pmap = addPolicyMap("openconfig:voice:10");
    start();
    pmap->classIs("openconfig:voice:10", classTo(5));
    const Once once(terms(), [&] { pmaps->pmapStatusDel("openconfig:voice:"); });
    pmap->versionIs(1);
    EXPECT_EQ(TestSupport::live<PmapStatusSm>(), 0u);
    EXPECT_EQ(state(), "voice IPV4 {10 to ''}");
}

TEST_P(PmapReentrancyTest, tellsAPolicyMapThatWentNothingMore) {
    addPolicyMap("openconfig:voice:10");
    start();
    const Once once(terms(), [&] {
        pmaps->pmapStatusDel("openconfig:voice:");
        groups->tcIs("gold", 1);
    });
    groups->tcDel("gold");
    EXPECT_EQ(state(), "voice IPV4 {10 to ''}");
}

TEST_P(PmapReentrancyTest, clearsStaleActionsWhenTermsGoMeanwhile) {
    groups->tcIs("fifth", 5);
    const auto pmap = addPolicyMap("openconfig:voice:20");
    addClassMap("openconfig:voice:10");
    start();
    const Once once(terms(), [&] { cmaps->cmapStatusDel("openconfig:voice:10"); });
    pmap->classDel("openconfig:voice:20");
    pmap->classIs("openconfig:voice:10", classTo(5));
    pmap->versionIs(1);
    EXPECT_EQ(state(), "voice IPV4 {20 to ''}");
}

TEST_P(PmapReentrancyTest, clearsStaleActionsWhenGroupsGoMeanwhile) {
    groups->tcIs("fifth", 5);
    const auto pmap = addPolicyMap("openconfig:voice:20");
    addClassMap("openconfig:voice:10");
    start();
    const Once once(terms(), [&] { groups->tcDel("fifth"); });
    pmap->classDel("openconfig:voice:20");
    pmap->classIs("openconfig:voice:10", classTo(5));
    pmap->versionIs(1);
    EXPECT_EQ(state(), "voice IPV4 {10 to '', 20 to ''}");
}

TEST_P(PmapReentrancyTest, clearsStaleActionsWhenTheClassifierGoesMeanwhile) {
    const auto pmap = addPolicyMap("openconfig:voice:10");
    addClassMap("voice");
    start();
    const Once once(
        terms(),
        [&] {
            cmaps->cmapStatusDel("voice");
            addClassifierTermAction(root, "voice", Type::IPV4, "30", "lead");
        },
        [&] { return root->classifier("voice")->terms()->term("20") != nullptr; });
    pmap->classIs("openconfig:voice:20", classTo(1));
    pmap->versionIs(1);
    EXPECT_EQ(state(), "voice IPV4 {20 to gold, 30 to ''}");
}

TEST_P(PmapReentrancyTest, clearsStaleActionsInTheOrderOfTheTree) {
    addClassifierTermAction(root, "video", Type::IPV6, "10", "lead");
    addClassifierTermAction(root, "voice", Type::IPV4, "10", "lead");
    std::string then;
    const Once once(root->classifier("video")->terms()->publisher(), [&] { then = state(); });
    pmaps->pmapStatusIs(Qos::PolicyMapStatus::create(String("openconfig:voice:video")));
    start();
    EXPECT_EQ(then, "video IPV6 {10 to ''}; voice IPV4 {10 to lead}");
    EXPECT_EQ(state(), "video IPV6 {10 to ''}; voice IPV4 {10 to ''}");
}

// One action is lost and another one is stale, so that there are as many as there should be.
TEST_P(PmapReentrancyTest, clearsAStaleActionWhenAnotherOneIsClearedMeanwhile) {
    groups->tcIs("fifth", 5);
    const auto pmap = addPolicyMap("openconfig:voice:20");
    addClassMap("openconfig:voice:10");
    start();
    const Once once(terms(), [&] { deleteClassifierTermAction(root, "voice", "10"); });
    pmap->classDel("openconfig:voice:20");
    pmap->classIs("openconfig:voice:10", classTo(5));
    pmap->versionIs(1);
    EXPECT_EQ(state(), "voice IPV4 {10 to '', 20 to ''}");
}

// One action is lost and another one is stale: both numbers of actions are the same.
TEST_P(PmapReentrancyTest, clearsAStaleActionWhenAnotherOneIsLostMeanwhile) {
    groups->tcIs("fifth", 5);
    const auto pmap = addPolicyMap("openconfig:voice:20");
    addClassMap("openconfig:voice:10");
    start();
    const Once once(
        terms(), [&] { cmaps->cmapStatusDel("openconfig:voice:10"); },
        [&] { return root->classifier("voice")->terms()->term("10")->actions.has_value(); });
    pmap->classDel("openconfig:voice:20");
    pmap->classIs("openconfig:voice:10", classTo(5));
    pmap->versionIs(1);
    EXPECT_EQ(state(), "voice IPV4 {20 to ''}");
}

// What is stale follows from the classes as they were when they were written.
TEST_P(PmapReentrancyTest, keepsAnActionWhoseClassGoesAfterItWasWritten) {
    groups->tcIs("fifth", 5);
    const auto pmap = addPolicyMap("openconfig:voice:10");
    addClassifierTermAction(root, "voice", Type::IPV4, "30", "lead");
    start();
    addClassifierTermAction(root, "voice", Type::IPV4, "30", "lead");
    const Once once(
        terms(), [&] { pmap->classDel("openconfig:voice:10"); },
        [&] { return root->classifier("voice")->terms()->term("20") != nullptr; });
    pmap->classIs("openconfig:voice:20", classTo(5));
    pmap->versionIs(1);
    EXPECT_EQ(state(), "voice IPV4 {10 to gold, 20 to fifth, 30 to ''}");
}

TEST_P(PmapReentrancyTest, clearsAnActionWhoseClassComesAfterTheWalk) {
    const auto pmap = addPolicyMap("openconfig:voice:10");
    start();
    addClassifierTermAction(root, "voice", Type::IPV4, "30", "lead");
    const Once once(
        terms(), [&] { pmap->classIs("openconfig:voice:30", classTo(1)); },
        [&] { return root->classifier("voice")->terms()->term("20") != nullptr; });
    pmap->classIs("openconfig:voice:20", classTo(1));
    pmap->versionIs(1);
    EXPECT_EQ(state(), "voice IPV4 {10 to gold, 20 to gold, 30 to ''}");
}

TEST_P(PmapReentrancyTest, sweepsNoClassifierThatComesWhileTheOtherIsSwept) {
    addClassifierTermAction(root, "video", Type::IPV6, "10", "lead");
    addClassifierTermAction(root, "voice", Type::IPV4, "10", "lead");
    const Once once(root->classifier("video")->terms()->publisher(), [&] {
        root->classifierDel("voice");
        addClassifierTermAction(root, "voice", Type::IPV4, "20", "lead");
    });
    pmaps->pmapStatusIs(Qos::PolicyMapStatus::create(String("openconfig:voice:video")));
    start();
    EXPECT_EQ(state(), "video IPV6 {10 to ''}; voice IPV4 {20 to lead}");
}

}  // namespace
}  // namespace QosOc
