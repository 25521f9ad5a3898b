#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/PmapMachineTest.h"

namespace QosOc {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// How a policy map's machine gives its classifiers back to the configuration.
class PmapStatusSmEndTest : public PmapMachineTest {
protected:
    Orin::Ptr<PmapStatusSm> start(const Pmap& pmap) {
        return pmapStatusSmFactory(pmap, cliConfig, configDir, state);
    }
    static std::string line(const std::string& rest) {
        return pmapLine("doPrepareToDie", "pmap",
                        "void QosOc::PmapStatusSm::doPrepareToDie()" + rest);
    }
};

TEST_F(PmapStatusSmEndTest, writesTheConfiguredTermsAndTargetGroupsAgain) {
    auto& v4 = configured("v4");
    v4.terms()->termIs(configuredTerm("10", "bronze"));
    v4.terms()->termIs(Config::Term("20"));
    v4.terms()->termIs(configuredTerm("30", ""));
    const auto sm = start(pmapOf("openconfig:v4:", {{"openconfig:v4:10", toTc(0)}}));
    TestSupport::StateRecorder heard(state);
    sm->doPrepareToDie();
    EXPECT_EQ(written(), "v4 IPV4 {10 to bronze, 20, 30}");
    EXPECT_THAT(heard.take(), ElementsAre("v4/10 to bronze", "v4/20", "v4/30"));
}

TEST_F(PmapStatusSmEndTest, deletesNothingAndTouchesNoConditions) {
    const auto sm = start(
        pmapOf("openconfig:v4:", {{"openconfig:v4:10", toTc(0)}, {"openconfig:v4:20", toTc(1)}}));
    Orin::Vector<unsigned char> values{46};
    addClassifierTermCondition(state, "v4", Classifier::Type::IPV4, "20", values);
    auto configuredTerms = configured("v4").terms();
    Config::Term term = configuredTerm("20", "lead");
    term.conditions = Config::TermConditions();
    configuredTerms->termIs(term);
    sm->doPrepareToDie();
    EXPECT_EQ(written(), "v4 IPV4 {10 to gold, 20 when ipv4 46 to lead}");
}

TEST_F(PmapStatusSmEndTest, makesAClassifierAgainWithItsConfiguredType) {
    configured("v4", Classifier::Type::IPV6);
    configured("v6", std::nullopt).termsIs(nullptr);
    const auto sm = start(pmapOf("openconfig:v4:v6"));
    deleteClassifier(state, "v4");
    deleteClassifier(state, "v6");
    sm->doPrepareToDie();
    EXPECT_EQ(written(), "v4 IPV6; v6 IPV4");
}

TEST_F(PmapStatusSmEndTest, writesNothingForClassifiersThatAreNotConfigured) {
    const auto sm = start(pmapOf("openconfig:v4:v6"));
    deleteClassifier(state, "v4");
    sm->doPrepareToDie();
    EXPECT_EQ(written(), "v6 IPV6");
}

TEST_F(PmapStatusSmEndTest, writesNothingForClassifiersOfOthers) {
    configured("foreign").terms()->termIs(configuredTerm("10", "gold"));
    const auto sm = start(pmapOf("openconfig:v4:"));
    sm->doPrepareToDie();
    EXPECT_EQ(written(), "v4 IPV4");
    const TestSupport::TraceCapture capture;
    sm->doPrepareToDie();
    EXPECT_EQ(written(), "v4 IPV4");
}

TEST_F(PmapStatusSmEndTest, tracesEachClassifierInTheOrderOfTheConfiguration) {
    configured("other");
    configured("v4").terms()->termIs(configuredTerm("10", "gold"));
    configured("another");
    const auto sm = start(pmapOf("openconfig:v4:v6"));
    const TestSupport::TraceCapture capture;
    sm->doPrepareToDie();
    EXPECT_THAT(
        linesOf(capture, {{sm.get(), "pmap"}}),
        ElementsAre(line(", pmapName = openconfig:v4:v6"),
                    line(", the classifier: other does not belong to the pmap: openconfig:v4:v6, "
                         "skipping"),
                    "addClassifier, classifierName = v4, classifierType = IPV4",
                    "addClassifierTerm, classifierName = v4, classifierType = IPV4, termId = 10",
                    "addClassifier, classifierName = v4, classifierType = IPV4",
                    "addClassifierTermAction, classifierName = v4, classifierType = IPV4, "
                    "termId = 10, targetGroup = gold",
                    "addClassifierTerm, classifierName = v4, classifierType = IPV4, termId = 10",
                    "addClassifier, classifierName = v4, classifierType = IPV4",
                    line(", the classifier: another does not belong to the pmap: "
                         "openconfig:v4:v6, skipping")));
}

TEST_F(PmapStatusSmEndTest, writesTheSameWithTraceOnAndOff) {
    configured("other").terms()->termIs(configuredTerm("5", "gold"));
    configured("v6", Classifier::Type::IPV6).terms()->termIs(configuredTerm("10", "gold"));
    configured("v4").terms()->termIs(configuredTerm("10", "lead"));
    start(pmapOf("openconfig:v4:v6"))->doPrepareToDie();
    const std::string silent = written();
    state = State::ClassifiersDir::create();
    const TestSupport::TraceCapture capture;
    start(pmapOf("openconfig:v4:v6"))->doPrepareToDie();
    EXPECT_EQ(written(), silent);
    EXPECT_EQ(silent, "v4 IPV4 {10 to lead}; v6 IPV6 {10 to gold}");
}

TEST_F(PmapStatusSmEndTest, givesAClassifierOfBothFamiliesBackOnce) {
    configured("v").terms()->termIs(configuredTerm("10", "gold"));
    const auto sm = start(pmapOf("openconfig:v:v"));
    TestSupport::StateRecorder heard(state);
    sm->doPrepareToDie();
    EXPECT_THAT(heard.take(), ElementsAre("v/terms", "v/10", "v/10 to gold"));
}

TEST_F(PmapStatusSmEndTest, leavesEverythingWhenItIsDropped) {
    configured("v4").terms()->termIs(configuredTerm("10", "bronze"));
    const auto pmap = pmapOf("openconfig:v4:", {{"openconfig:v4:10", toTc(0)}});
    start(pmap);
    EXPECT_EQ(written(), "v4 IPV4 {10 to gold}");
    EXPECT_EQ(live<PmapStatusSm>(), 0u);
    EXPECT_FALSE(pmap->publisher()->hasSubscribers());
    EXPECT_FALSE(cliConfig->publisher()->hasSubscribers());
    EXPECT_FALSE(groups->publisher()->hasSubscribers());
}

}  // namespace
}  // namespace QosOc
