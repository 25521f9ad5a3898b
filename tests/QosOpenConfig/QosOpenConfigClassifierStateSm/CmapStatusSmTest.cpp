#include "QosOpenConfig/QosOpenConfigClassifierStateSm/CmapStatusSm.h"
#include "tests/QosOpenConfig/MachineContract.h"

namespace QosOc {
namespace {

using Qos::ClassMapStatus;
using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using enum Qos::ClassMapMatchOption;

class CmapStatusSmTest : public StateTest {
protected:
    /// The machine of a class map that has these match options.
    void start(const char* name, std::initializer_list<Qos::ClassMapMatchOption> options) {
        cmapStatus = ClassMapStatus::create(Orin::String(name));
        for (const auto option : options)
            cmapStatus->matchIs(option, "any");
        sm = CmapStatusSm::CmapStatusSmIs(cmapStatus, root);
    }

    Orin::Ptr<ClassMapStatus> cmapStatus;
    Orin::Ptr<CmapStatusSm> sm;
};

TEST_F(CmapStatusSmTest, writesTheTermThatTheClassMapWasMadeFrom) {
    start("openconfig:vo%3Aice:10", {matchIpv6AccessGroup});
    EXPECT_EQ(state(), "vo:ice IPV6 {10}");
}

TEST_F(CmapStatusSmTest, writesTheClassifierOfAnOrdinaryClassMap) {
    start("voice", {matchIpv6AccessGroup});
    EXPECT_EQ(state(), "voice IPV6");
}

TEST_F(CmapStatusSmTest, takesTheIpv4TypeFromEveryOtherOption) {
    for (const auto option :
         {matchIpAccessGroup, matchMacAccessGroup, matchDscp, matchPrecedence, matchCos, matchVlan,
          static_cast<Qos::ClassMapMatchOption>(4294967295)}) {
        start("voice", {option});
        EXPECT_EQ(state(), "voice IPV4");
        sm->doPrepareToDie();
    }
}

TEST_F(CmapStatusSmTest, writesOnceForEachMatchOption) {
    const Lines lines = traced([this] { start("voice", {matchDscp, matchCos}); });
    EXPECT_EQ(lines.size(), 5u) << "the start, and for each option the handler and the writer";
    EXPECT_THAT(heard.take(), ElementsAre("voice", "voice/state IPV4"));
}

TEST_F(CmapStatusSmTest, takesEitherTypeFromOptionsOfBothFamilies) {
    start("voice", {matchIpv6AccessGroup, matchIpAccessGroup});
    EXPECT_THAT(state(), AnyOf("voice IPV4", "voice IPV6"));
}

TEST_F(CmapStatusSmTest, writesNothingWithoutMatchOptions) {
    start("voice", {});
    EXPECT_EQ(state(), "");
    cmapStatus->matchIs(matchIpv6AccessGroup, "");
    EXPECT_EQ(state(), "voice IPV6");
}

TEST_F(CmapStatusSmTest, writesNothingForNamesThatStandForNone) {
    for (const char* name : {"class-default", "openconfig:voice", "openconfig::10",
                             "openconfig:voice:%3a", "openconfig:voice:10:"}) {
        start(name, {matchIpAccessGroup});
        EXPECT_EQ(state(), "") << name;
    }
}

TEST_F(CmapStatusSmTest, deletesNothingForNamesThatStandForNone) {
    for (const char* name : {"class-default", "openconfig:voice", ""}) {
        addClassifierTerm(root, name, Classifier::Type::IPV4, "10");
        start(name, {matchIpAccessGroup});
        heard.take();
        sm->doPrepareToDie();
        EXPECT_THAT(heard.take(), IsEmpty()) << name;
    }
}

TEST_F(CmapStatusSmTest, keepsTheTypeOfAnExistingClassifier) {
    addClassifier(root, "voice", Classifier::Type::IPV4);
    start("voice", {matchIpv6AccessGroup});
    EXPECT_EQ(state(), "voice IPV4");
}

TEST_F(CmapStatusSmTest, keepsWhatAnExistingTermHas) {
    addClassifierTermAction(root, "voice", Classifier::Type::IPV6, "10", "gold");
    start("openconfig:voice:10", {matchIpAccessGroup});
    EXPECT_EQ(state(), "voice IPV6 {10 to gold}");
}

TEST_F(CmapStatusSmTest, writesAgainWithTheIpv4TypeWhenAnOptionGoes) {
    start("voice", {matchIpv6AccessGroup});
    deleteClassifier(root, "voice");
    cmapStatus->matchDel(matchIpv6AccessGroup);
    EXPECT_EQ(state(), "voice IPV4");
}

TEST_F(CmapStatusSmTest, writesAMissingTermAgainWithTheIpv4TypeWhenAnOptionGoes) {
    start("openconfig:voice:10", {matchIpv6AccessGroup});
    deleteClassifier(root, "voice");
    cmapStatus->matchDel(matchIpv6AccessGroup);
    EXPECT_EQ(state(), "voice IPV4 {10}");
}

TEST_F(CmapStatusSmTest, changesNothingWhereAllIsThereWhenAnOptionGoes) {
    start("openconfig:voice:10", {matchIpv6AccessGroup});
    heard.take();
    cmapStatus->matchDel(matchIpv6AccessGroup);
    EXPECT_EQ(state(), "voice IPV6 {10}");
    EXPECT_THAT(heard.take(), IsEmpty());
}

TEST_F(CmapStatusSmTest, writesAMissingTermAgainWhenAnOptionIsPublished) {
    start("openconfig:voice:10", {matchIpv6AccessGroup});
    addClassifierTerm(root, "voice", Classifier::Type::IPV6, "20");
    deleteClassifierTerm(root, "voice", "10");
    cmapStatus->matchIs(matchIpv6AccessGroup, "another");
    EXPECT_EQ(state(), "voice IPV6 {10, 20}");
}

TEST_F(CmapStatusSmTest, takesBackOnlyItsTerm) {
    addClassifierTerm(root, "voice", Classifier::Type::IPV4, "20");
    start("openconfig:voice:10", {matchIpAccessGroup});
    heard.take();
    sm->doPrepareToDie();
    EXPECT_EQ(state(), "voice IPV4 {20}");
    EXPECT_THAT(heard.take(), ElementsAre("voice/10 gone"));
}

TEST_F(CmapStatusSmTest, leavesTheClassifierOfItsLastTerm) {
    start("openconfig:voice:10", {matchIpAccessGroup});
    sm->doPrepareToDie();
    EXPECT_EQ(state(), "voice IPV4");
}

TEST_F(CmapStatusSmTest, takesBackItsClassifierWithAllTerms) {
    start("voice", {matchIpAccessGroup});
    addClassifierTermAction(root, "voice", Classifier::Type::IPV4, "10", "gold");
    addClassifier(root, "video", Classifier::Type::IPV4);
    sm->doPrepareToDie();
    EXPECT_EQ(state(), "video IPV4");
}

TEST_F(CmapStatusSmTest, takesBackEvenWhatAnOptionNoLongerBacks) {
    start("voice", {matchIpAccessGroup});
    cmapStatus->matchDel(matchIpAccessGroup);
    EXPECT_EQ(state(), "voice IPV4");
    sm->doPrepareToDie();
    EXPECT_EQ(state(), "");
}

TEST_F(CmapStatusSmTest, leavesTheStateWhenItIsDropped) {
    start("voice", {matchIpAccessGroup});
    sm = nullptr;
    EXPECT_EQ(state(), "voice IPV4");
    EXPECT_FALSE(hasSubscribers(*cmapStatus));
}

TEST_F(CmapStatusSmTest, ignoresOtherAttributes) {
    start("voice", {matchIpAccessGroup});
    deleteClassifier(root, "voice");
    const auto option = matchIpAccessGroup;
    for (const Orin::AttributeId id : Ids{0, 1, 259, 261, 263})
        cmapStatus->publishChange(id, &option);
    EXPECT_EQ(state(), "");
    cmapStatus->publishChange(262, &option);
    EXPECT_EQ(state(), "voice IPV4");
}

TEST_F(CmapStatusSmTest, ignoresChangesWhileItIsAZombie) {
    start("voice", {});
    sm->vexDoZombieReactors(true);
    cmapStatus->matchIs(matchIpAccessGroup, "any");
    EXPECT_EQ(state(), "");
    sm->vexDoZombieReactors(false);
    cmapStatus->matchIs(matchDscp, "any");
    EXPECT_EQ(state(), "voice IPV4");
}

TEST_F(CmapStatusSmTest, hearsEachChangeOnceHoweverOftenItIsTurnedOn) {
    start("voice", {matchIpAccessGroup});
    sm->hasNotificationActiveIs(true);
    sm->hasNotificationActiveIs(false);
    EXPECT_TRUE(traced([this] { cmapStatus->matchIs(matchDscp, "any"); }).empty());
    sm->hasNotificationActiveIs(true);
    sm->hasNotificationActiveIs(true);
    EXPECT_EQ(traced([this] { cmapStatus->matchIs(matchCos, "any"); }).size(), 2u);
}

TEST_F(CmapStatusSmTest, tracesItsStartAndEachOption) {
    const Lines lines = traced([this] { start("voice", {matchIpv6AccessGroup}); });
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0], lineOf(sm.get(), "handleInitialized", 425,
                               "void QosOc::CmapStatusSm::handleInitialized()"));
    EXPECT_EQ(lines[1], lineOf(sm.get(), "handleCmapStatusMatch", 387,
                               "void QosOc::CmapStatusSm::handleCmapStatusMatch("
                               "Qos::ClassMapMatchOption), option = matchIpv6AccessGroup"));
    EXPECT_THAT(lines[2], ::testing::HasSubstr(" addClassifier void "));
}

TEST_F(CmapStatusSmTest, tracesAnOptionWithoutANameByItsNumber) {
    start("voice", {});
    const Lines lines =
        traced([this] { sm->handleCmapStatusMatch(static_cast<Qos::ClassMapMatchOption>(7)); });
    EXPECT_EQ(lines.at(0), lineOf(sm.get(), "handleCmapStatusMatch", 387,
                                  "void QosOc::CmapStatusSm::handleCmapStatusMatch("
                                  "Qos::ClassMapMatchOption), option = 7"));
}

TEST_F(CmapStatusSmTest, tracesThatItPreparesToDie) {
    start("openconfig:voice:10", {matchIpAccessGroup});
    const Lines lines = traced([this] { sm->doPrepareToDie(); });
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0], lineOf(sm.get(), "doPrepareToDie", 408,
                               "void QosOc::CmapStatusSm::doPrepareToDie()"));
    EXPECT_THAT(lines[1], ::testing::HasSubstr(" deleteClassifierTerm void "));
}

TEST_F(CmapStatusSmTest, writesNothingWithoutAClassMap) {
    const Lines lines = traced([this] {
        sm = cmapStatusSmFactory(nullptr, root);
        sm->handleCmapStatusMatch(matchIpAccessGroup);
        sm->doPrepareToDie();
    });
    EXPECT_EQ(lines.size(), 3u);
    EXPECT_THAT(heard.take(), IsEmpty());
}

TEST_F(CmapStatusSmTest, leavesNothingBehindWhenItCannotBeMade) {
    const auto made = ClassMapStatus::create(Orin::String("openconfig:voice:10"));
    made->matchIs(matchIpv6AccessGroup, "any");
    expectLeavesNothingBehind(
        {made.get()}, [&](const StateDir& tree) { CmapStatusSm::CmapStatusSmIs(made, tree); });
}

TEST_F(CmapStatusSmTest, hasTheOperationsOfAMachine) {
    start("voice", {});
    EXPECT_THAT(TestSupport::virtualOperations(sm.get()),
                ElementsAreArray(machineOperations("CmapStatusSm")));
}

TEST_F(CmapStatusSmTest, describesItself) {
    start("voice", {});
    const Vex::TypeRecord& type = sm->typeData();
    EXPECT_EQ(type.fullName, "QosOc::CmapStatusSm");
    EXPECT_THAT(attributesOf(type),
                ElementsAre("cmapStatus 1 input watched Qos::ClassMapStatus",
                            "classifierStateDir 2 input QosOc::State::ClassifiersDir"));
    EXPECT_EQ(type.attributes[0].read(sm.get()), Vex::Value(Vex::NodeRef(cmapStatus)));
    EXPECT_EQ(type.attributes[1].read(sm.get()), Vex::Value(Vex::NodeRef(root)));
}

}  // namespace
}  // namespace QosOc
