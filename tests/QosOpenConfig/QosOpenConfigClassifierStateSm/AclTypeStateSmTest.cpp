#include "QosOpenConfig/QosOpenConfigClassifierStateSm/AclTypeStateSm.h"
#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/AclMachineTest.h"

namespace QosOc {
namespace {

using ::testing::ElementsAre;

class AclTypeStateSmTest : public AclTypeMachineTest {};

TEST_F(AclTypeStateSmTest, keepsAMachineForEachListThatIsThere) {
    const auto sm = start();
    add("openconfig:v4:10", rulesFor({46}));
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 46}");
    const auto* made = child(*sm, "openconfig:v4:10");
    touch("openconfig:v4:10");
    EXPECT_EQ(child(*sm, "openconfig:v4:10"), made);
    EXPECT_EQ(live<AclStateSm>(), 1u);
}

TEST_F(AclTypeStateSmTest, catchesUpInAscendingOrderOfNames) {
    for (const char* name : {"openconfig:c:1", "openconfig:a:1", "openconfig:b:1"})
        add(name);
    TestSupport::StateRecorder heard(state);
    const auto sm = start();
    EXPECT_THAT(heard.take(),
                ElementsAre("a", "a/state IPV4", "a/terms", "a/1", "b", "b/state IPV4", "b/terms",
                            "b/1", "c", "c/state IPV4", "c/terms", "c/1"));
}

TEST_F(AclTypeStateSmTest, tracesACatchUp) {
    add("openconfig:v4:10");
    add("plain");
    writeCondition("v4", "90", 1);
    const TestSupport::TraceCapture capture;
    const auto sm = start();
    EXPECT_THAT(
        linesOf(capture, {{sm.get(), "type"}, {child(*sm, "openconfig:v4:10"), "list"}}),
        ElementsAre(
            typeLine("347", "handleInitialized", "()"),
            typeLine("322", "handleAclConfig", "(const String&), aclName = openconfig:v4:10"),
            listLine("304", "handleInitialized"),
            "addClassifierTerm, classifierName = v4, classifierType = IPV4, termId = 10",
            "addClassifier, classifierName = v4, classifierType = IPV4",
            listLine("273", "handleAclSubConfig"),
            typeLine("363", "handleInitialized", "(), removing the stale entries"),
            "deleteClassifierTermCondition, classifierName = v4, termId = 90"));
}

TEST_F(AclTypeStateSmTest, deletesNothingWithoutLists) {
    writeCondition("v4", "90", 1);
    const TestSupport::TraceCapture capture;
    const auto sm = start();
    EXPECT_EQ(written(), "v4 IPV4 {90 when ipv4 1}");
    EXPECT_THAT(
        linesOf(capture, {{sm.get(), "type"}}),
        ElementsAre(typeLine("347", "handleInitialized", "()"),
                    typeLine("363", "handleInitialized", "(), removing the stale entries")));
}

TEST_F(AclTypeStateSmTest, givesAListWithoutATermNoMachineAtItsStartButOneOnALaterChange) {
    for (const char* name : {"plain", "openconfig::10", "openconfig:v4:"})
        add(name, rulesFor({46}));
    const auto sm = start();
    EXPECT_EQ(live<AclStateSm>(), 0u);
    touch("plain");
    EXPECT_NE(child(*sm, "plain"), nullptr);
    EXPECT_EQ(live<AclStateSm>(), 1u);
    EXPECT_EQ(live<AclSubStateSm>(), 1u);
    EXPECT_EQ(written(), "");
    lists->aclConfigDel("plain");
    EXPECT_EQ(live<AclStateSm>(), 0u);
    EXPECT_EQ(written(), "");
}

TEST_F(AclTypeStateSmTest, takesTheConditionsOfVanishedListsAtItsStart) {
    writeCondition("v4", "10", 1);
    writeCondition("v4", "20", 2);
    writeCondition("v4", "90", 9);
    addClassifierTermAction(state, "v4", Classifier::Type::IPV4, "90", "gold");
    writeCondition("foreign", "90", 9);
    add("openconfig:v4:10");
    add("openconfig:v4:20");
    const auto sm = start();
    EXPECT_EQ(written(),
              "foreign IPV4 {90 when ipv4 9}; "
              "v4 IPV4 {10 when ipv4 1, 20 when ipv4 2, 90 to gold}");
}

TEST_F(AclTypeStateSmTest, sweepsNoTermsWithoutConditions) {
    addClassifierTerm(state, "v4", Classifier::Type::IPV4, "90");
    add("openconfig:v4:10");
    const TestSupport::TraceCapture capture;
    const auto sm = start();
    EXPECT_THAT(linesOf(capture, {}),
                ::testing::Not(::testing::Contains(::testing::StartsWith("deleteClassifierTerm"))));
}

TEST_F(AclTypeStateSmTest, sweepsAnEmptyConditionsContainer) {
    writeCondition("v4", "90", 9);
    deleteClassifierTermCondition(state, "v4", "90", false);
    add("openconfig:v4:10");
    const auto sm = start();
    EXPECT_EQ(written(), "v4 IPV4 {10, 90}");
}

TEST_F(AclTypeStateSmTest, sweepsOnceForEachCreation) {
    add("openconfig:v4:10");
    auto sm = start();
    writeCondition("v4", "90", 9);
    touch("openconfig:v4:10");
    add("openconfig:v4:20");
    EXPECT_EQ(written(), "v4 IPV4 {10, 20, 90 when ipv4 9}");
    sm = start();
    EXPECT_EQ(written(), "v4 IPV4 {10, 20, 90}");
}

TEST_F(AclTypeStateSmTest, protectsTheTermOfANullEntryWithoutAMachine) {
    writeCondition("v4", "10", 1);
    lists->aclConfigIs("openconfig:v4:10", nullptr);
    const auto sm = start();
    EXPECT_EQ(live<AclStateSm>(), 0u);
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 1}");
}

TEST_F(AclTypeStateSmTest, sweepsNothingWhereANullEntrysClassifierHasNoTerms) {
    lists->aclConfigIs("openconfig:v4:10", nullptr);
    lists->aclConfigIs("openconfig:unknown:10", nullptr);
    addClassifier(state, "v4", Classifier::Type::IPV4);
    const auto sm = start();
    EXPECT_EQ(written(), "v4 IPV4");
}

TEST_F(AclTypeStateSmTest, sweepsBesideANullEntryThatHasNoTerm) {
    writeCondition("v4", "90", 9);
    add("openconfig:v4:10", rulesFor({46}));
    lists->aclConfigIs("openconfig:v4:20", nullptr);
    const auto sm = start();
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 46, 90}");
}

TEST_F(AclTypeStateSmTest, protectsTermsWhoseNamesNeedEscapes) {
    for (const char* term : {"a:b", "c%d", "e"})
        writeCondition("v:4", term, 9);
    add("openconfig:v%3A4:a%3Ab");
    add("openconfig:v%3A4:c%25d");
    const auto sm = start();
    EXPECT_EQ(written(), "v:4 IPV4 {a:b when ipv4 9, c%d when ipv4 9, e}");
}

TEST_F(AclTypeStateSmTest, sweepsTheClassifiersThatListsNameInTheirOrderInTheTree) {
    for (const char* name : {"b", "a", "ab"})
        writeCondition(name, "90", 9);
    for (const char* list :
         {"openconfig:b:1", "openconfig:ab:1", "openconfig:a:2", "openconfig:a:1"})
        add(list);
    const TestSupport::TraceCapture capture;
    const auto sm = start();
    EXPECT_EQ(written(), "a IPV4 {1, 2, 90}; ab IPV4 {1, 90}; b IPV4 {1, 90}");
    auto deletions = linesOf(capture, {});
    std::erase_if(deletions,
                  [](const auto& line) { return !line.starts_with("deleteClassifier"); });
    EXPECT_THAT(deletions,
                ElementsAre("deleteClassifierTermCondition, classifierName = b, termId = 90",
                            "deleteClassifierTermCondition, classifierName = a, termId = 90",
                            "deleteClassifierTermCondition, classifierName = ab, termId = 90"));
}

TEST_F(AclTypeStateSmTest, removesTheMachineOfAListThatBecomesNull) {
    add("openconfig:v4:10", rulesFor({46}));
    const auto sm = start();
    lists->aclConfigIs("openconfig:v4:10", nullptr);
    EXPECT_EQ(live<AclStateSm>(), 0u);
    EXPECT_EQ(written(), "v4 IPV4 {10}");
    const auto again = add("openconfig:v4:10", rulesFor({8}));
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 8}");
}

TEST_F(AclTypeStateSmTest, removesAListInTwoDeletionsThatAreBothTraced) {
    add("openconfig:v4:10", rulesFor({46}));
    const auto sm = start();
    const auto* list = child(*sm, "openconfig:v4:10");
    const auto* rules = childOf<AclSubStateSm>(*list, "aclSubStateSm");
    TestSupport::StateRecorder heard(state);
    const TestSupport::TraceCapture capture;
    lists->aclConfigDel("openconfig:v4:10");
    EXPECT_THAT(linesOf(capture, {{sm.get(), "type"}, {list, "list"}, {rules, "rules"}}),
                ElementsAre(typeLine("322", "handleAclConfig",
                                     "(const String&), aclName = openconfig:v4:10"),
                            listLine("287", "doPrepareToDie"), rulesLine("252", "doPrepareToDie"),
                            "deleteClassifierTermCondition, classifierName = v4, termId = 10",
                            "deleteClassifierTermCondition, classifierName = v4, termId = 10"));
    EXPECT_THAT(heard.take(), ElementsAre("v4/10 when -", "v4/10"));
    EXPECT_EQ(written(), "v4 IPV4 {10}");
    EXPECT_EQ(live<AclStateSm>() + live<AclSubStateSm>(), 0u);
}

TEST_F(AclTypeStateSmTest, onlyTracesTheChangeOfAListThatItNeverHad) {
    const auto sm = start();
    const TestSupport::TraceCapture capture;
    touch("openconfig:v4:10");
    EXPECT_THAT(linesOf(capture, {{sm.get(), "type"}}),
                ElementsAre(typeLine("322", "handleAclConfig",
                                     "(const String&), aclName = openconfig:v4:10")));
}

TEST_F(AclTypeStateSmTest, preparesTheMachinesThatTheInputNamesBeforeItDies) {
    add("openconfig:b:10", rulesFor({46}));
    add("openconfig:a:10");
    add("plain");
    const auto sm = start();
    const Names names{
        {sm.get(), "type"},
        {child(*sm, "openconfig:a:10"), "list"},
        {child(*sm, "openconfig:b:10"), "list"},
        {childOf<AclSubStateSm>(*child(*sm, "openconfig:b:10"), "aclSubStateSm"), "rules"}};
    const TestSupport::TraceCapture capture;
    sm->doPrepareToDie();
    EXPECT_THAT(
        linesOf(capture, names),
        ElementsAre(typeLine("335", "doPrepareToDie", "()"), listLine("287", "doPrepareToDie"),
                    "deleteClassifierTermCondition, classifierName = a, termId = 10",
                    listLine("287", "doPrepareToDie"), rulesLine("252", "doPrepareToDie"),
                    "deleteClassifierTermCondition, classifierName = b, termId = 10",
                    "deleteClassifierTermCondition, classifierName = b, termId = 10"));
    EXPECT_EQ(live<AclStateSm>(), 0u);
    EXPECT_EQ(written(), "a IPV4 {10}; b IPV4 {10}");
}

TEST_F(AclTypeStateSmTest, leavesMachinesThatTheInputNoLongerNamesWhenItDies) {
    add("openconfig:v4:10", rulesFor({46}));
    const auto sm = start();
    sm->hasNotificationActiveIs(false);
    lists->aclConfigDel("openconfig:v4:10");
    sm->doPrepareToDie();
    EXPECT_NE(child(*sm, "openconfig:v4:10"), nullptr);
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 46}");
}

}  // namespace
}  // namespace QosOc
