#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/PmapMachineTest.h"

namespace QosOc {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// What a policy map's machine makes of its classes.
class TermActionsTest : public PmapMachineTest {
protected:
    using Classes = std::initializer_list<std::pair<const char*, Qos::PolicyMapClass>>;

    void start(Classes classes, const char* name = "openconfig:v4:v6") {
        pmap = pmapOf(name, classes);
        sm = pmapStatusSmFactory(pmap, cliConfig, configDir, state);
    }
    static std::string update(const std::string& rest) {
        return pmapLine("updateClassifierTermActions", "pmap",
                        "QosOc::ClassifierMetaData::Ptr "
                        "QosOc::PmapStatusSm::updateClassifierTermActions()" +
                            rest);
    }
    static std::string version(const std::string& rest) {
        return pmapLine("handlePmapStatusVersionUpdate", "pmap",
                        "void QosOc::PmapStatusSm::handlePmapStatusVersionUpdate()" + rest);
    }
    Lines linesIn(const TestSupport::TraceCapture& capture) const {
        return linesOf(capture, {{sm.get(), "pmap"}});
    }

    Pmap pmap;
    Orin::Ptr<PmapStatusSm> sm;
};

TEST_F(TermActionsTest, makesEachClassATermWithTheGroupOfItsTrafficClass) {
    start({{"openconfig:v4:10", toTc(0)}, {"openconfig:v6:10", toTc(1)}});
    EXPECT_EQ(written(), "v4 IPV4 {10 to gold}; v6 IPV6 {10 to silver}");
}

TEST_F(TermActionsTest, givesTheFamilyByTheIpv6ClassifierAlone) {
    start({{"openconfig:v4:10", toTc(0)}, {"openconfig:v6:10", toTc(1)}});
    deleteClassifier(state, "v4");
    deleteClassifier(state, "v6");
    raiseVersion(pmap);
    EXPECT_EQ(written(), "v4 IPV4 {10 to gold}; v6 IPV6 {10 to silver}");
}

TEST_F(TermActionsTest, takesAClassifierOfBothFamiliesForIpv6) {
    start({{"openconfig:v:10", toTc(0)}}, "openconfig:v:v");
    deleteClassifier(state, "v");
    raiseVersion(pmap);
    EXPECT_EQ(written(), "v IPV6 {10 to gold}");
}

TEST_F(TermActionsTest, passesOverClassesThatStandForNoTerm) {
    const TestSupport::TraceCapture capture;
    start({{"plain", toTc(0)}, {"openconfig:v4:", toTc(0)}, {"openconfig::10", toTc(0)}});
    EXPECT_EQ(written(), "v4 IPV4; v6 IPV6");
    for (const std::string& line : linesIn(capture))
        EXPECT_EQ(line.find("cmapName"), line.npos) << line;
}

TEST_F(TermActionsTest, keepsTheTermOfAClassWithoutATrafficClassAndClearsItsAction) {
    start({{"openconfig:v4:10", toTc(0)}});
    pmap->classIs("openconfig:v4:10", classWithAction(3, 0));
    raiseVersion(pmap);
    EXPECT_EQ(written(), "v4 IPV4 {10 to ''}; v6 IPV6");
}

TEST_F(TermActionsTest, keepsTheTermOfAClassWithoutAGroupAndClearsItsAction) {
    start({{"openconfig:v4:10", toTc(0)}});
    pmap->classIs("openconfig:v4:10", toTc(99));
    raiseVersion(pmap);
    EXPECT_EQ(written(), "v4 IPV4 {10 to ''}; v6 IPV6");
}

TEST_F(TermActionsTest, recordsAClassWithoutAGroup) {
    start({{"openconfig:v4:10", toTc(99)}, {"openconfig:v4:20", {}}});
    const auto metaData = sm->updateClassifierTermActions();
    const auto* info = metaData->classifierInfo("v4");
    ASSERT_NE(info, nullptr);
    ASSERT_NE(info->termActionInfo("10"), nullptr);
    EXPECT_EQ(*info->termActionInfo("10"), (TermActionInfo{"10", "v4", ""}));
    EXPECT_EQ(*info->termActionInfo("20"), (TermActionInfo{"20", "v4", ""}));
}

TEST_F(TermActionsTest, recordsBothClassifiersAndEachClass) {
    start({{"openconfig:v4:10", toTc(0)}});
    const auto metaData = sm->updateClassifierTermActions();
    ASSERT_NE(metaData->classifierInfo("v6"), nullptr);
    EXPECT_EQ(metaData->classifierInfo("v6")->termActionInfo("10"), nullptr);
    EXPECT_EQ(*metaData->classifierInfo("v4")->termActionInfo("10"),
              (TermActionInfo{"10", "v4", "gold"}));
    EXPECT_EQ(metaData->classifierInfo("v4")->termActionInfo("20"), nullptr);
}

TEST_F(TermActionsTest, recordsAClassOfAThirdClassifierOnDemand) {
    start({{"openconfig:third:10", toTc(0)}});
    EXPECT_EQ(written(), "third IPV4 {10 to gold}; v4 IPV4; v6 IPV6");
    const auto metaData = sm->updateClassifierTermActions();
    ASSERT_NE(metaData->classifierInfo("third"), nullptr);
    EXPECT_EQ(*metaData->classifierInfo("third")->termActionInfo("10"),
              (TermActionInfo{"10", "third", "gold"}));
}

TEST_F(TermActionsTest, leavesTheTermsOfAThirdClassifierOutOfTheStalePass) {
    start({{"openconfig:third:10", toTc(0)}});
    pmap->classDel("openconfig:third:10");
    raiseVersion(pmap);
    EXPECT_EQ(written(), "third IPV4 {10 to gold}; v4 IPV4; v6 IPV6");
}

TEST_F(TermActionsTest, clearsTheActionOfATermWhoseClassIsGoneAtTheNextVersion) {
    start({{"openconfig:v4:10", toTc(0)}, {"openconfig:v6:10", toTc(1)}});
    Orin::Vector<unsigned char> values{46};
    addClassifierTermCondition(state, "v4", Classifier::Type::IPV4, "10", values);
    pmap->classDel("openconfig:v4:10");
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 46 to gold}; v6 IPV6 {10 to silver}");
    TestSupport::StateRecorder heard(state);
    raiseVersion(pmap);
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 46 to ''}; v6 IPV6 {10 to silver}");
    EXPECT_THAT(heard.take(), ElementsAre("v4/10 when ipv4 46 to ''"));
}

TEST_F(TermActionsTest, clearsActionsOfItsClassifiersThatOthersWrote) {
    addClassifierTermAction(state, "v4", Classifier::Type::IPV4, "90", "lead");
    addClassifierTermAction(state, "foreign", Classifier::Type::IPV4, "90", "lead");
    start({});
    EXPECT_EQ(written(), "foreign IPV4 {90 to lead}; v4 IPV4 {90 to ''}; v6 IPV6");
}

TEST_F(TermActionsTest, clearsAStaleActionOfEitherFamilyAlone) {
    start({{"openconfig:v4:10", toTc(0)}, {"openconfig:v6:10", toTc(1)}});
    pmap->classDel("openconfig:v6:10");
    raiseVersion(pmap);
    EXPECT_EQ(written(), "v4 IPV4 {10 to gold}; v6 IPV6 {10 to ''}");
}

TEST_F(TermActionsTest, clearsAStaleActionThoughAClassWithoutAGroupStandsForAnotherTerm) {
    start({{"openconfig:v4:10", {}}, {"openconfig:v4:20", toTc(0)}});
    pmap->classDel("openconfig:v4:20");
    raiseVersion(pmap);
    EXPECT_EQ(written(), "v4 IPV4 {10 to '', 20 to ''}; v6 IPV6");
}

TEST_F(TermActionsTest, clearsStaleActionsThoughAThirdClassifierHasAsMany) {
    start({{"openconfig:v4:10", toTc(0)}, {"openconfig:third:10", toTc(1)}});
    pmap->classDel("openconfig:v4:10");
    raiseVersion(pmap);
    EXPECT_EQ(written(), "third IPV4 {10 to silver}; v4 IPV4 {10 to ''}; v6 IPV6");
    pmap->classIs("openconfig:v6:10", toTc(2));
    raiseVersion(pmap);
    pmap->classDel("openconfig:v6:10");
    raiseVersion(pmap);
    EXPECT_EQ(written(), "third IPV4 {10 to silver}; v4 IPV4 {10 to ''}; v6 IPV6 {10 to ''}");
}

TEST_F(TermActionsTest, givesATermThatHasNoClassAnEmptyAction) {
    start({{"openconfig:v4:10", toTc(0)}});
    addClassifierTerm(state, "v4", Classifier::Type::IPV4, "20");
    raiseVersion(pmap);
    EXPECT_EQ(written(), "v4 IPV4 {10 to gold, 20 to ''}; v6 IPV6");
}

TEST_F(TermActionsTest, clearsStaleActionsWhereTheOtherClassifierIsGone) {
    start({{"openconfig:v4:10", toTc(0)}});
    deleteClassifier(state, "v6");
    pmap->classDel("openconfig:v4:10");
    raiseVersion(pmap);
    EXPECT_EQ(written(), "v4 IPV4 {10 to ''}");
}

TEST_F(TermActionsTest, tellsNamesOfClassifiersTermsAndGroupsApart) {
    addClassifierTermAction(state, "10", Classifier::Type::IPV4, "v4", "lead");
    addClassifierTermAction(state, "v4", Classifier::Type::IPV4, "gold", "lead");
    start({{"openconfig:v4:10", toTc(0)}, {"openconfig:v4:gold", toTc(1)}});
    EXPECT_EQ(written(), "10 IPV4 {v4 to lead}; v4 IPV4 {10 to gold, gold to silver}; v6 IPV6");
}

TEST_F(TermActionsTest, rewritesCurrentActionsOnAChangeOfTheMapWithoutAStalePass) {
    start({{"openconfig:v4:10", toTc(0)}, {"openconfig:v4:20", toTc(0)}});
    pmap->classDel("openconfig:v4:20");
    groups->tcIs("brass", 0);
    EXPECT_EQ(written(), "v4 IPV4 {10 to brass, 20 to gold}; v6 IPV6");
    raiseVersion(pmap);
    EXPECT_EQ(written(), "v4 IPV4 {10 to brass, 20 to ''}; v6 IPV6");
}

TEST_F(TermActionsTest, publishesOnlyWhatChanges) {
    start({{"openconfig:v4:10", toTc(0)}, {"openconfig:v4:20", toTc(1)}});
    TestSupport::StateRecorder heard(state);
    raiseVersion(pmap);
    groups->tcIs("spare", 9);
    EXPECT_THAT(heard.take(), IsEmpty());
    pmap->classIs("openconfig:v4:20", toTc(2));
    raiseVersion(pmap);
    EXPECT_THAT(heard.take(), ElementsAre("v4/20 to lead"));
}

TEST_F(TermActionsTest, tracesAVersionUpdateWithALineForEachForeignClassifierInItsPlace) {
    addClassifier(state, "first", Classifier::Type::IPV4);
    start({{"openconfig:v4:10", toTc(0)}, {"openconfig:v4:20", {}}}, "openconfig:v4:");
    addClassifier(state, "last", Classifier::Type::IPV4);
    const TestSupport::TraceCapture capture;
    raiseVersion(pmap);
    EXPECT_THAT(
        linesIn(capture),
        ElementsAre(version(", pmapName = openconfig:v4:, pmapStatusVersion = 8"),
                    update(", pmapName = openconfig:v4:"),
                    "addClassifierTerm, classifierName = v4, classifierType = IPV4, termId = 10",
                    "addClassifier, classifierName = v4, classifierType = IPV4",
                    update(", cmapName = openconfig:v4:10, targetGroup = gold"),
                    "addClassifierTermAction, classifierName = v4, classifierType = IPV4, "
                    "termId = 10, targetGroup = gold",
                    "addClassifierTerm, classifierName = v4, classifierType = IPV4, termId = 10",
                    "addClassifier, classifierName = v4, classifierType = IPV4",
                    "addClassifierTerm, classifierName = v4, classifierType = IPV4, termId = 20",
                    "addClassifier, classifierName = v4, classifierType = IPV4",
                    update(", cmapName = openconfig:v4:20, targetGroup = "),
                    "deleteClassifierTermAction, classifierName = v4, termId = 20",
                    version(", removing the stale classifier term action paths"),
                    version(", classifier: first does not belong to the pmap, skipping"),
                    "deleteClassifierTermAction, classifierName = v4, termId = 20",
                    version(", classifier: last does not belong to the pmap, skipping")));
}

TEST_F(TermActionsTest, writesTheSameWithTraceOnAndOff) {
    const auto run = [this] {
        state = State::ClassifiersDir::create();
        addClassifierTermAction(state, "foreign", Classifier::Type::IPV4, "10", "lead");
        addClassifierTermAction(state, "v6", Classifier::Type::IPV6, "90", "lead");
        addClassifierTermAction(state, "v4", Classifier::Type::IPV4, "90", "lead");
        start({{"openconfig:v4:10", toTc(0)}, {"openconfig:v6:10", toTc(0)}});
        pmap->classDel("openconfig:v4:10");
        raiseVersion(pmap);
        return written();
    };
    const std::string silent = run();
    const TestSupport::TraceCapture capture;
    EXPECT_EQ(run(), silent);
    EXPECT_EQ(silent,
              "foreign IPV4 {10 to lead}; v4 IPV4 {10 to '', 90 to ''}; "
              "v6 IPV6 {10 to gold, 90 to ''}");
}

TEST_F(TermActionsTest, writesNoLinesBelowItsLevel) {
    const TestSupport::TraceCapture capture("OpenConfigQosClfStateSm", 7);
    addClassifier(state, "foreign", Classifier::Type::IPV4);
    start({{"openconfig:v4:10", toTc(0)}});
    EXPECT_THAT(capture.rawLines(), IsEmpty());
}

TEST_F(TermActionsTest, writesTheVersionUnsigned) {
    start({});
    const TestSupport::TraceCapture capture;
    pmap->versionIs(4294967295);
    EXPECT_EQ(linesIn(capture).at(0),
              version(", pmapName = openconfig:v4:v6, pmapStatusVersion = 4294967295"));
}

TEST_F(TermActionsTest, endsTheProcessWhenATrafficClassNeedsAConfigurationThatIsMissing) {
    cliConfig = nullptr;
    start({{"openconfig:v4:10", {}}});
    EXPECT_EQ(written(), "v4 IPV4 {10 to ''}; v6 IPV6");
    pmap->classIs("openconfig:v4:10", toTc(0));
    EXPECT_DEATH(raiseVersion(pmap),
                 "/src/QosOpenConfig/QosOpenConfigClassifierStateSm:[0-9]+: "
                 "QosOc::ClassifierMetaData::Ptr "
                 "QosOc::PmapStatusSm::updateClassifierTermActions\\(\\): "
                 "Assertion `cliConfig' failed");
}

}  // namespace
}  // namespace QosOc
