#include <gmock/gmock.h>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/PmapTypeStatusSm.h"
#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/PmapTypeMachineTest.h"

namespace QosOc {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PmapTypeStatusSmTest : public PmapTypeMachineTest {};

TEST_F(PmapTypeStatusSmTest, countsTheClassifiersOfAPolicyMapThatComesAndMakesItsMachine) {
    const auto sm = start();
    add("openconfig:v4:v6");
    EXPECT_EQ(uses(), (Uses{{"v4 (IPV4)", 1}, {"v6 (IPV6)", 1}}));
    EXPECT_NE(child(*sm, "openconfig:v4:v6"), nullptr);
    EXPECT_EQ(written(), "v4 IPV4; v6 IPV6");
}

TEST_F(PmapTypeStatusSmTest, countsOnlyTheClassifierThatTheNameYields) {
    add("openconfig::v6");
    const auto sm = start();
    EXPECT_EQ(uses(), (Uses{{"v6 (IPV6)", 1}}));
    EXPECT_EQ(written(), "v6 IPV6");
}

TEST_F(PmapTypeStatusSmTest, passesOverAPolicyMapThatYieldsNoClassifier) {
    const auto sm = start();
    for (const char* name : {"plain", "openconfig::", "openconfig:a:b:c", "openconfig:%:b"})
        add(name);
    EXPECT_EQ(uses(), Uses{});
    EXPECT_EQ(live<PmapStatusSm>(), 0u);
    EXPECT_EQ(written(), "");
}

TEST_F(PmapTypeStatusSmTest, writesOneLineOnlyForAPolicyMapThatYieldsNoClassifier) {
    const auto sm = start();
    const TestSupport::TraceCapture capture;
    add("plain");
    EXPECT_THAT(linesOf(capture, {{sm.get(), "type"}}), ElementsAre(handlePmapStatusLine("plain")));
}

TEST_F(PmapTypeStatusSmTest, tracesACatchUpInOrder) {
    add("openconfig:v4:");
    const TestSupport::TraceCapture capture;
    const auto sm = start();
    EXPECT_THAT(linesOf(capture, {{sm.get(), "type"}}, "PmapTypeStatusSm"),
                ElementsAre(pmapLine("handleInitialized", "type",
                                     "void QosOc::PmapTypeStatusSm::handleInitialized()"),
                            handlePmapStatusLine("openconfig:v4:"), updateLine("v4", "IPV4", true),
                            updateLine("", "IPV6", true), emptyNameLine()));
}

TEST_F(PmapTypeStatusSmTest, countsBeforeItMakesTheMachine) {
    const auto sm = start();
    const TestSupport::TraceCapture capture;
    add("openconfig:v4:v6");
    const auto* made = child(*sm, "openconfig:v4:v6");
    const Lines lines = linesOf(capture, {{sm.get(), "type"}, {made, "pmap"}});
    ASSERT_GT(lines.size(), 4u);
    EXPECT_THAT(Lines(lines.begin(), lines.begin() + 4),
                ElementsAre(handlePmapStatusLine("openconfig:v4:v6"),
                            updateLine("v4", "IPV4", true), updateLine("v6", "IPV6", true),
                            pmapLine("handleInitialized", "pmap",
                                     "void QosOc::PmapStatusSm::handleInitialized(), pmapName = "
                                     "openconfig:v4:v6")));
}

TEST_F(PmapTypeStatusSmTest, preparesTheMachineOfAPolicyMapThatLeavesAndRemovesIt) {
    configured("v4").terms()->termIs(configuredTerm("10", "gold"));
    const auto sm = start();
    add("openconfig:v4:v6");
    const auto* gone = child(*sm, "openconfig:v4:v6");
    const TestSupport::TraceCapture capture;
    pmaps->pmapStatusDel("openconfig:v4:v6");
    EXPECT_EQ(live<PmapStatusSm>(), 0u);
    EXPECT_EQ(written(), "v4 IPV4 {10 to gold}; v6 IPV6");
    EXPECT_THAT(
        linesOf(capture, {{sm.get(), "type"}, {gone, "pmap"}}),
        ElementsAre(handlePmapStatusLine("openconfig:v4:v6"), updateLine("v4", "IPV4", false),
                    updateLine("v6", "IPV6", false),
                    pmapLine("doPrepareToDie", "pmap",
                             "void QosOc::PmapStatusSm::doPrepareToDie(), pmapName = "
                             "openconfig:v4:v6"),
                    "addClassifier, classifierName = v4, classifierType = IPV4",
                    "addClassifierTerm, classifierName = v4, classifierType = IPV4, termId = 10",
                    "addClassifier, classifierName = v4, classifierType = IPV4",
                    "addClassifierTermAction, classifierName = v4, classifierType = IPV4, "
                    "termId = 10, targetGroup = gold",
                    "addClassifierTerm, classifierName = v4, classifierType = IPV4, termId = 10",
                    "addClassifier, classifierName = v4, classifierType = IPV4"));
}

TEST_F(PmapTypeStatusSmTest, takesTheUsesOfAPolicyMapThatLeavesBack) {
    const auto sm = start();
    add("openconfig:v4:v6");
    pmaps->pmapStatusDel("openconfig:v4:v6");
    EXPECT_EQ(uses(), Uses{});
}

TEST_F(PmapTypeStatusSmTest, countsAClassifierOnceForEachPolicyMapThatUsesIt) {
    const auto sm = start();
    add("openconfig:v4:v6");
    add("openconfig:v4:other");
    EXPECT_EQ(uses(), (Uses{{"other (IPV6)", 1}, {"v4 (IPV4)", 2}, {"v6 (IPV6)", 1}}));
    pmaps->pmapStatusDel("openconfig:v4:v6");
    EXPECT_EQ(uses(), (Uses{{"other (IPV6)", 1}, {"v4 (IPV4)", 1}}));
    pmaps->pmapStatusDel("openconfig:v4:other");
    EXPECT_EQ(uses(), Uses{});
}

TEST_F(PmapTypeStatusSmTest, countsTheSameNameApartForEachFamily) {
    const auto sm = start();
    add("openconfig:v:v");
    EXPECT_EQ(uses(), (Uses{{"v (IPV4)", 1}, {"v (IPV6)", 1}}));
}

TEST_F(PmapTypeStatusSmTest, countsNotificationsNotPolicyMaps) {
    const auto sm = start();
    add("openconfig:v4:v6");
    const auto* made = child(*sm, "openconfig:v4:v6");
    touch("openconfig:v4:v6");
    EXPECT_EQ(uses(), (Uses{{"v4 (IPV4)", 2}, {"v6 (IPV6)", 2}}));
    EXPECT_EQ(child(*sm, "openconfig:v4:v6"), made);
    pmaps->pmapStatusDel("openconfig:v4:v6");
    EXPECT_EQ(uses(), (Uses{{"v4 (IPV4)", 1}, {"v6 (IPV6)", 1}}));
    EXPECT_EQ(live<PmapStatusSm>(), 0u);
}

TEST_F(PmapTypeStatusSmTest, takesUsesBackForAPolicyMapWithoutAMachine) {
    const auto sm = start();
    registry->classifierIs({"v4", Classifier::Type::IPV4}, 3);
    touch("openconfig:v4:v6");
    EXPECT_EQ(uses(), (Uses{{"v4 (IPV4)", 2}}));
}

TEST_F(PmapTypeStatusSmTest, addsAUseToACountOfZeroThatIsThere) {
    const auto sm = start();
    registry->classifierIs({"v4", Classifier::Type::IPV4}, 0);
    sm->updateClassifiersWithPmap("v4", Classifier::Type::IPV4, true);
    EXPECT_EQ(uses(), (Uses{{"v4 (IPV4)", 1}}));
}

TEST_F(PmapTypeStatusSmTest, wrapsTheGreatestCountToZeroAndKeepsTheClassifier) {
    const auto sm = start();
    registry->classifierIs({"v4", Classifier::Type::IPV4}, 4294967295);
    sm->updateClassifiersWithPmap("v4", Classifier::Type::IPV4, true);
    EXPECT_EQ(uses(), (Uses{{"v4 (IPV4)", 0}}));
}

TEST_F(PmapTypeStatusSmTest, wrapsACountOfZeroToTheGreatestAndKeepsTheClassifier) {
    const auto sm = start();
    registry->classifierIs({"v4", Classifier::Type::IPV4}, 0);
    sm->updateClassifiersWithPmap("v4", Classifier::Type::IPV4, false);
    EXPECT_EQ(uses(), (Uses{{"v4 (IPV4)", 4294967295}}));
}

TEST_F(PmapTypeStatusSmTest, removesTheClassifierWhenItsCountFallsFromOne) {
    const auto sm = start();
    registry->classifierIs({"v4", Classifier::Type::IPV4}, 2);
    sm->updateClassifiersWithPmap("v4", Classifier::Type::IPV4, false);
    EXPECT_EQ(uses(), (Uses{{"v4 (IPV4)", 1}}));
    sm->updateClassifiersWithPmap("v4", Classifier::Type::IPV4, false);
    EXPECT_EQ(uses(), Uses{});
}

TEST_F(PmapTypeStatusSmTest, takesNothingBackFromAClassifierThatIsNotCounted) {
    const auto sm = start();
    registry->classifierIs({"v4", Classifier::Type::IPV6}, 1);
    sm->updateClassifiersWithPmap("v4", Classifier::Type::IPV4, false);
    EXPECT_EQ(uses(), (Uses{{"v4 (IPV6)", 1}}));
}

TEST_F(PmapTypeStatusSmTest, refusesAnEmptyClassifierName) {
    const auto sm = start();
    const TestSupport::TraceCapture capture;
    sm->updateClassifiersWithPmap("", Classifier::Type::IPV4, true);
    sm->updateClassifiersWithPmap("", Classifier::Type::IPV6, false);
    EXPECT_EQ(uses(), Uses{});
    EXPECT_THAT(linesOf(capture, {{sm.get(), "type"}}),
                ElementsAre(updateLine("", "IPV4", true), emptyNameLine(),
                            updateLine("", "IPV6", false), emptyNameLine()));
}

TEST_F(PmapTypeStatusSmTest, takesAllBackAndRemovesAllMachinesBeforeItDies) {
    configured("v4").terms()->termIs(configuredTerm("10", "gold"));
    add("openconfig:v4:v6");
    add("openconfig:a4:");
    const auto sm = start();
    sm->doPrepareToDie();
    EXPECT_EQ(uses(), Uses{});
    EXPECT_EQ(live<PmapStatusSm>(), 0u);
    EXPECT_EQ(written(), "a4 IPV4; v4 IPV4 {10 to gold}; v6 IPV6");
}

TEST_F(PmapTypeStatusSmTest, tracesItsEndInAscendingOrderPassingOverNoPolicyMap) {
    add("plain");
    add("openconfig:v4:v6");
    const auto sm = start();
    const auto* gone = child(*sm, "openconfig:v4:v6");
    const TestSupport::TraceCapture capture;
    sm->doPrepareToDie();
    EXPECT_THAT(linesOf(capture, {{sm.get(), "type"}, {gone, "pmap"}}),
                ElementsAre(pmapLine("doPrepareToDie", "type",
                                     "void QosOc::PmapTypeStatusSm::doPrepareToDie()"),
                            updateLine("v4", "IPV4", false), updateLine("v6", "IPV6", false),
                            pmapLine("doPrepareToDie", "pmap",
                                     "void QosOc::PmapStatusSm::doPrepareToDie(), pmapName = "
                                     "openconfig:v4:v6"),
                            updateLine("", "IPV4", false), emptyNameLine(),
                            updateLine("", "IPV6", false), emptyNameLine()));
}

TEST_F(PmapTypeStatusSmTest, leavesMachinesThatTheInputNoLongerNamesWhenItDies) {
    configured("v4").terms()->termIs(configuredTerm("10", "gold"));
    add("openconfig:v4:v6");
    const auto sm = start();
    sm->hasNotificationActiveIs(false);
    pmaps->pmapStatusDel("openconfig:v4:v6");
    sm->doPrepareToDie();
    EXPECT_NE(child(*sm, "openconfig:v4:v6"), nullptr);
    EXPECT_EQ(uses(), (Uses{{"v4 (IPV4)", 1}, {"v6 (IPV6)", 1}}));
    EXPECT_EQ(written(), "v4 IPV4; v6 IPV6");
}

TEST_F(PmapTypeStatusSmTest, leavesStateAndRegistryWhenItIsDropped) {
    configured("v4").terms()->termIs(configuredTerm("10", "gold"));
    add("openconfig:v4:v6");
    start();
    EXPECT_EQ(live<PmapTypeStatusSm>(), 0u);
    EXPECT_EQ(live<PmapStatusSm>(), 0u);
    EXPECT_EQ(uses(), (Uses{{"v4 (IPV4)", 1}, {"v6 (IPV6)", 1}}));
    EXPECT_EQ(written(), "v4 IPV4; v6 IPV6");
    EXPECT_FALSE(pmaps->publisher()->hasSubscribers());
}

}  // namespace
}  // namespace QosOc
