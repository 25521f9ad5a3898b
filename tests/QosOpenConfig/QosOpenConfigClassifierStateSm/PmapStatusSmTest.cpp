#include "QosOpenConfig/QosOpenConfigClassifierStateSm/PmapStatusSm.h"
#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/OnClassifier.h"
#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/PmapMachineTest.h"

namespace QosOc {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PmapStatusSmTest : public PmapMachineTest {
protected:
    Orin::Ptr<PmapStatusSm> start(const Pmap& pmap) {
        return pmapStatusSmFactory(pmap, cliConfig, configDir, state);
    }
    static std::string line(const std::string& function, const std::string& rest) {
        return pmapLine(function, "pmap", "void QosOc::PmapStatusSm::" + function + "()" + rest);
    }
    static std::string text(const PmapStatusSm& sm, const char* attribute) {
        const auto* record = Vex::attributeNamed(sm.typeData(), attribute);
        return std::string(record->read(&sm).as<Orin::String>().view());
    }
};

TEST_F(PmapStatusSmTest, makesBothClassifiersOfThePolicyMapExist) {
    TestSupport::StateRecorder heard(state);
    const auto sm = start(pmapOf("openconfig:v4:v6"));
    EXPECT_EQ(written(), "v4 IPV4; v6 IPV6");
    EXPECT_THAT(heard.take(), ElementsAre("v4", "v4/state IPV4", "v6", "v6/state IPV6"));
    EXPECT_EQ(text(*sm, "ipv4ClassifierName"), "v4");
    EXPECT_EQ(text(*sm, "ipv6ClassifierName"), "v6");
}

TEST_F(PmapStatusSmTest, makesOnlyTheClassifierThatTheNameYields) {
    const auto sm6 = start(pmapOf("openconfig::v6"));
    EXPECT_EQ(written(), "v6 IPV6");
    const auto sm4 = start(pmapOf("openconfig:v4:"));
    EXPECT_EQ(written(), "v4 IPV4; v6 IPV6");
}

TEST_F(PmapStatusSmTest, tracesItsStart) {
    const TestSupport::TraceCapture capture;
    const auto sm = start(pmapOf("openconfig:v4:v6"));
    EXPECT_THAT(linesOf(capture, {{sm.get(), "pmap"}}),
                ElementsAre(line("handleInitialized", ", pmapName = openconfig:v4:v6"),
                            "addClassifier, classifierName = v4, classifierType = IPV4",
                            "addClassifier, classifierName = v6, classifierType = IPV6",
                            line("handlePmapStatusVersionUpdate",
                                 ", pmapName = openconfig:v4:v6, pmapStatusVersion = 7"),
                            pmapLine("updateClassifierTermActions", "pmap",
                                     "QosOc::ClassifierMetaData::Ptr "
                                     "QosOc::PmapStatusSm::updateClassifierTermActions(), "
                                     "pmapName = openconfig:v4:v6"),
                            line("handlePmapStatusVersionUpdate",
                                 ", removing the stale classifier term action paths")));
}

// The configuration is heard before anything is computed; its map only afterwards, so that a change
// of the map that the first computation sets off is not heard of.
TEST_F(PmapStatusSmTest, watchesTheConfigurationFirstAndItsMapLast) {
    bool heardConfig = false;
    bool heardMap = true;
    const OnClassifier probe(state, [&](const Orin::String&) {
        heardConfig = cliConfig->publisher()->hasSubscribers();
        heardMap = groups->publisher()->hasSubscribers();
    });
    const auto sm = start(pmapOf("openconfig:v4:"));
    EXPECT_TRUE(heardConfig);
    EXPECT_FALSE(heardMap);
    EXPECT_TRUE(groups->publisher()->hasSubscribers());
}

TEST_F(PmapStatusSmTest, computesAgainWhenAnEntryOfTheMapChanges) {
    const auto sm = start(pmapOf("openconfig:v4:", {{"openconfig:v4:10", toTc(5)}}));
    EXPECT_EQ(written(), "v4 IPV4 {10 to ''}");
    groups->tcIs("fifth", 5);
    EXPECT_EQ(written(), "v4 IPV4 {10 to fifth}");
    groups->tcDel("fifth");
    EXPECT_EQ(written(), "v4 IPV4 {10 to ''}");
}

TEST_F(PmapStatusSmTest, onlyWatchesAMapThatTakesThePlaceOfAnother) {
    const auto sm = start(pmapOf("openconfig:v4:", {{"openconfig:v4:10", toTc(0)}}));
    const auto other = Qos::ForwardingGroupNameToTcMap::create();
    other->tcIs("other", 0);
    const TestSupport::TraceCapture capture;
    cliConfig->forwardingGroupNameToTcMapIs(other);
    EXPECT_THAT(capture.rawLines(), IsEmpty());
    EXPECT_EQ(written(), "v4 IPV4 {10 to gold}");
    other->tcIs("spare", 9);
    EXPECT_EQ(written(), "v4 IPV4 {10 to other}");
}

TEST_F(PmapStatusSmTest, hearsNoMoreOfAMapThatWasReplaced) {
    const auto sm = start(pmapOf("openconfig:v4:", {{"openconfig:v4:10", toTc(0)}}));
    cliConfig->forwardingGroupNameToTcMapIs(Qos::ForwardingGroupNameToTcMap::create());
    EXPECT_FALSE(groups->publisher()->hasSubscribers());
    groups->tcIs("brass", 0);
    EXPECT_EQ(written(), "v4 IPV4 {10 to gold}");
}

TEST_F(PmapStatusSmTest, keepsItsActionsWhenTheMapGoesAndWatchesTheOneThatComes) {
    const auto pmap = pmapOf("openconfig:v4:", {{"openconfig:v4:10", toTc(0)}});
    const auto sm = start(pmap);
    cliConfig->forwardingGroupNameToTcMapIs(nullptr);
    EXPECT_EQ(written(), "v4 IPV4 {10 to gold}");
    raiseVersion(pmap);
    EXPECT_EQ(written(), "v4 IPV4 {10 to ''}");
    cliConfig->forwardingGroupNameToTcMapIs(groups);
    EXPECT_EQ(written(), "v4 IPV4 {10 to ''}");
    groups->tcIs("spare", 9);
    EXPECT_EQ(written(), "v4 IPV4 {10 to gold}");
}

TEST_F(PmapStatusSmTest, watchesAMapThatComesLater) {
    cliConfig->forwardingGroupNameToTcMapIs(nullptr);
    const auto sm = start(pmapOf("openconfig:v4:", {{"openconfig:v4:10", toTc(0)}}));
    EXPECT_EQ(written(), "v4 IPV4 {10 to ''}");
    cliConfig->forwardingGroupNameToTcMapIs(groups);
    EXPECT_EQ(written(), "v4 IPV4 {10 to ''}");
    groups->tcIs("spare", 9);
    EXPECT_EQ(written(), "v4 IPV4 {10 to gold}");
}

TEST_F(PmapStatusSmTest, computesOnceForAChangeOfTheMapItIsGivenAgain) {
    const auto sm = start(pmapOf("openconfig:v4:"));
    sm->vex_CliConfig_ForwardingGroupNameToTcMapInIs(groups);
    const TestSupport::TraceCapture capture;
    groups->tcIs("spare", 9);
    EXPECT_THAT(linesOf(capture, {{sm.get(), "pmap"}}),
                ElementsAre(line("handleForwardingGroupNameToTcMap", ""),
                            pmapLine("updateClassifierTermActions", "pmap",
                                     "QosOc::ClassifierMetaData::Ptr "
                                     "QosOc::PmapStatusSm::updateClassifierTermActions(), "
                                     "pmapName = openconfig:v4:")));
}

TEST_F(PmapStatusSmTest, hearsOfNoMapOnceItsReactorIsRemoved) {
    const auto sm = start(pmapOf("openconfig:v4:", {{"openconfig:v4:10", toTc(0)}}));
    sm->vex_CliConfig_ForwardingGroupNameToTcMapInDel();
    EXPECT_FALSE(groups->publisher()->hasSubscribers());
    sm->vex_CliConfig_ForwardingGroupNameToTcMapInIs(groups);
    groups->tcIs("bronze", 0);
    EXPECT_EQ(written(), "v4 IPV4 {10 to bronze}");
}

TEST_F(PmapStatusSmTest, ignoresAttributesThatItDoesNotWatch) {
    const auto pmap = pmapOf("openconfig:v4:");
    const auto sm = start(pmap);
    const TestSupport::TraceCapture capture;
    pmap->classIs("openconfig:v4:10", toTc(0));
    const Orin::String name("gold");
    groups->publishChange(999, &name);
    cliConfig->publishChange(999, &name);
    EXPECT_THAT(capture.rawLines(), IsEmpty());
}

TEST_F(PmapStatusSmTest, ignoresVersionAndMapWithTheZombieFlagButFollowsTheConfiguration) {
    const auto pmap = pmapOf("openconfig:v4:", {{"openconfig:v4:10", toTc(1)}});
    const auto sm = start(pmap);
    sm->vexDoZombieReactors(true);
    const TestSupport::TraceCapture capture;
    raiseVersion(pmap);
    groups->tcIs("bronze", 1);
    const auto other = Qos::ForwardingGroupNameToTcMap::create();
    cliConfig->forwardingGroupNameToTcMapIs(other);
    other->tcIs("other", 1);
    EXPECT_THAT(capture.rawLines(), IsEmpty());
    sm->vexDoZombieReactors(false);
    other->tcIs("spare", 9);
    EXPECT_EQ(written(), "v4 IPV4 {10 to other}");
}

TEST_F(PmapStatusSmTest, fallsSilentWithItsNestedReactorsAndHearsEachChangeOnceAgain) {
    const auto pmap = pmapOf("openconfig:v4:", {{"openconfig:v4:10", toTc(1)}});
    const auto sm = start(pmap);
    sm->hasNotificationActiveIs(false);
    EXPECT_FALSE(pmap->publisher()->hasSubscribers());
    EXPECT_FALSE(cliConfig->publisher()->hasSubscribers());
    EXPECT_FALSE(groups->publisher()->hasSubscribers());
    sm->hasNotificationActiveIs(true);
    const TestSupport::TraceCapture capture;
    groups->tcIs("bronze", 1);
    raiseVersion(pmap);
    Lines starts;
    for (const std::string& text : linesOf(capture, {{sm.get(), "pmap"}}, "PmapStatusSm"))
        if (text.find(" updateClassifierTermActions ") != text.npos &&
            text.find("pmapName") != text.npos)
            starts.push_back(text);
    EXPECT_EQ(starts.size(), 2u);
    cliConfig->forwardingGroupNameToTcMapIs(nullptr);
    EXPECT_FALSE(groups->publisher()->hasSubscribers());
}

TEST_F(PmapStatusSmTest, doesNothingWithoutAPolicyMap) {
    const auto sm = start(nullptr);
    EXPECT_EQ(written(), "");
    EXPECT_FALSE(groups->publisher()->hasSubscribers());
    const TestSupport::TraceCapture capture;
    sm->doPrepareToDie();
    sm->handlePmapStatusVersionUpdate();
    EXPECT_THAT(
        linesOf(capture, {{sm.get(), "pmap"}}),
        ElementsAre(line("doPrepareToDie", ", pmapName = "),
                    line("handlePmapStatusVersionUpdate", ", pmapName = , pmapStatusVersion = 0"),
                    pmapLine("updateClassifierTermActions", "pmap",
                             "QosOc::ClassifierMetaData::Ptr "
                             "QosOc::PmapStatusSm::updateClassifierTermActions(), "
                             "pmapName = "),
                    line("handlePmapStatusVersionUpdate",
                         ", removing the stale classifier term action paths")));
}

TEST_F(PmapStatusSmTest, leavesNothingBehindWhenAnAllocationFails) {
    const auto pmap = pmapOf("openconfig:v4:v6", {{"openconfig:v4:10", toTc(0)}});
    const auto isClean = [&] {
        EXPECT_EQ(live<PmapStatusSm>() + live<ClassifierMetaData>() + live<ClassifierInfo>(), 0u);
        EXPECT_FALSE(pmap->publisher()->hasSubscribers());
        EXPECT_FALSE(cliConfig->publisher()->hasSubscribers());
        EXPECT_FALSE(groups->publisher()->hasSubscribers());
        state = State::ClassifiersDir::create();
    };
    EXPECT_GT(TestSupport::failEachAllocation([&] { start(pmap); }, isClean), 5u);
    EXPECT_EQ(written(), "v4 IPV4 {10 to gold}; v6 IPV6");
}

TEST_F(PmapStatusSmTest, describesItself) {
    EXPECT_THAT(attributesOf(PmapStatusSm::kTypeRecord),
                ElementsAre("pmapStatus 1 input watched Qos::PolicyMapStatus",
                            "cliConfig 2 input watched Qos::Input::Config",
                            "classifierConfigDir 3 input QosOc::Config::ClassifiersDir",
                            "classifierStateDir 4 input QosOc::State::ClassifiersDir",
                            "ipv4ClassifierName 5 plain", "ipv6ClassifierName 6 plain",
                            "vex_CliConfig_ForwardingGroupNameToTcMapIn 7 plain watched "
                            "Qos::ForwardingGroupNameToTcMap"));
    const auto sm = PmapStatusSm::kTypeRecord.construct(
        std::vector<Vex::Value>{Vex::NodeRef(pmapOf("openconfig:v4:")), Vex::NodeRef(cliConfig),
                                Vex::NodeRef(configDir), Vex::NodeRef(state)});
    EXPECT_EQ(sm->typeData().fullName, "QosOc::PmapStatusSm");
    EXPECT_EQ(written(), "v4 IPV4");
    const auto* map =
        Vex::attributeNamed(sm->typeData(), "vex_CliConfig_ForwardingGroupNameToTcMapIn");
    EXPECT_EQ(map->read(sm.get()), Vex::Value(Vex::NodeRef(groups)));
}

}  // namespace
}  // namespace QosOc
