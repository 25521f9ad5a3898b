#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifierStateSm.h"
#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifierTermsSm.h"
#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/MachineTest.h"

namespace QosOc {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ClassifierTermsSmTest : public MachineTest {
protected:
    Orin::Ptr<ClassifierTermsSm> start(Classifier::Type type = Classifier::Type::IPV4) {
        return classifierTermsSmFactory(terms, "voice", type, registry, state);
    }
    static std::string line(const std::string& function, const std::string& rest,
                            const std::string& type = "IPV4") {
        return machineLine("own", function.substr(0, function.find('(')), "terms",
                           "void QosOc::ClassifierTermsSm::" + function +
                               ", classifierName = voice, classifierType = " + type + rest);
    }
    static std::string updateLine(const std::string& rest, const std::string& type = "IPV4") {
        return line("updateClassifierTermActionStatePath(const String&, const String&)", rest,
                    type);
    }
    static std::string usedLine(const std::string& key) {
        return machineLine("own", "updateClassifierTermActionStatePath", "terms",
                           "void QosOc::ClassifierTermsSm::updateClassifierTermActionStatePath("
                           "const String&, const String&) classifier : " +
                               key + " is a part of pmap(s), skipping");
    }

    Orin::Ptr<Config::Terms> terms = Config::Terms::create();
};

TEST_F(ClassifierTermsSmTest, writesTheTargetGroupOfEachConfiguredTerm) {
    terms->termIs(configuredTerm("10", "gold"));
    terms->termIs(configuredTerm("20", "lead"));
    TestSupport::StateRecorder heard(state);
    const auto sm = start(Classifier::Type::IPV6);
    EXPECT_EQ(written(), "voice IPV6 {10 to gold, 20 to lead}");
    EXPECT_THAT(heard.take(), ElementsAre("voice", "voice/state IPV6", "voice/terms", "voice/10",
                                          "voice/10 to gold", "voice/20", "voice/20 to lead"));
}

TEST_F(ClassifierTermsSmTest, tracesACatchUp) {
    terms->termIs(configuredTerm("10", "gold"));
    const TestSupport::TraceCapture capture;
    const auto sm = start(Classifier::Type::IPV6);
    EXPECT_THAT(
        linesOf(capture, {{sm.get(), "terms"}}),
        ElementsAre(
            line("handleInitialized()", "", "IPV6"),
            line("handleClassifierTerm(const String&)", ", termId = 10", "IPV6"),
            updateLine(", termId = 10, targetGroup = gold", "IPV6"),
            "addClassifierTermAction, classifierName = voice, classifierType = IPV6, termId = 10, "
            "targetGroup = gold",
            "addClassifierTerm, classifierName = voice, classifierType = IPV6, termId = 10",
            "addClassifier, classifierName = voice, classifierType = IPV6"));
}

TEST_F(ClassifierTermsSmTest, writesATermThatComesOrChanges) {
    const auto sm = start();
    terms->termIs(configuredTerm("10", "gold"));
    EXPECT_EQ(written(), "voice IPV4 {10 to gold}");
    terms->termIs(configuredTerm("10", "lead"));
    EXPECT_EQ(written(), "voice IPV4 {10 to lead}");
}

TEST_F(ClassifierTermsSmTest, keepsTheTermOfOneThatLeavesAndClearsItsAction) {
    terms->termIs(configuredTerm("10", "gold"));
    const auto sm = start();
    const TestSupport::TraceCapture capture;
    terms->termDel("10");
    EXPECT_EQ(written(), "voice IPV4 {10 to ''}");
    EXPECT_THAT(linesOf(capture, {{sm.get(), "terms"}}),
                ElementsAre(line("handleClassifierTerm(const String&)", ", termId = 10"),
                            updateLine(", termId = 10, targetGroup = "),
                            "deleteClassifierTermAction, classifierName = voice, termId = 10"));
}

TEST_F(ClassifierTermsSmTest, keepsTheTermOfOneThatLosesItsActionsAndClearsItsAction) {
    terms->termIs(configuredTerm("10", "gold"));
    const auto sm = start();
    terms->termIs(Config::Term("10"));
    EXPECT_EQ(written(), "voice IPV4 {10 to ''}");
}

TEST_F(ClassifierTermsSmTest, clearsTheActionOfATermWithAnEmptyTargetGroup) {
    terms->termIs(configuredTerm("10", "gold"));
    const auto sm = start();
    terms->termIs(configuredTerm("10", ""));
    EXPECT_EQ(written(), "voice IPV4 {10 to ''}");
}

TEST_F(ClassifierTermsSmTest, writesNothingForATermWithoutActionsThatHasNoState) {
    terms->termIs(Config::Term("10"));
    terms->termIs(configuredTerm("20", ""));
    const auto sm = start();
    EXPECT_EQ(written(), "");
}

TEST_F(ClassifierTermsSmTest, mirrorsNoConditions) {
    Config::Term term = configuredTerm("10", "gold");
    term.conditions.emplace().ipv4 = Config::TermConditionsIpConfig(46);
    terms->termIs(term);
    Orin::Vector<unsigned char> values{8};
    addClassifierTermCondition(state, "voice", Classifier::Type::IPV4, "20", values);
    terms->termIs(configuredTerm("20", "lead"));
    const auto sm = start();
    EXPECT_EQ(written(), "voice IPV4 {10 to gold, 20 when ipv4 8 to lead}");
}

TEST_F(ClassifierTermsSmTest, leavesAClassifierThatPolicyMapsUseAlone) {
    registry->classifierIs({"voice", Classifier::Type::IPV4}, 2);
    terms->termIs(configuredTerm("10", "gold"));
    const TestSupport::TraceCapture capture;
    const auto sm = start();
    EXPECT_EQ(written(), "");
    EXPECT_THAT(
        linesOf(capture, {{sm.get(), "terms"}}),
        ElementsAre(line("handleInitialized()", ""),
                    line("handleClassifierTerm(const String&)", ", termId = 10"),
                    updateLine(", termId = 10, targetGroup = gold"), usedLine("voice (IPV4)")));
}

TEST_F(ClassifierTermsSmTest, namesAnIpv6ClassifierThatPolicyMapsUse) {
    registry->classifierIs({"voice", Classifier::Type::IPV6}, 1);
    const auto sm = start(Classifier::Type::IPV6);
    const TestSupport::TraceCapture capture;
    sm->updateClassifierTermActionStatePath("10", "gold");
    EXPECT_EQ(linesOf(capture, {{sm.get(), "terms"}}).at(1), usedLine("voice (IPV6)"));
    EXPECT_EQ(written(), "");
}

TEST_F(ClassifierTermsSmTest, looksForNameAndTypeInTheRegistry) {
    registry->classifierIs({"voice", Classifier::Type::IPV6}, 1);
    registry->classifierIs({"video", Classifier::Type::IPV4}, 1);
    terms->termIs(configuredTerm("10", "gold"));
    const auto sm = start();
    EXPECT_EQ(written(), "voice IPV4 {10 to gold}");
}

TEST_F(ClassifierTermsSmTest, takesACountOfZeroForUnused) {
    registry->classifierIs({"voice", Classifier::Type::IPV4}, 0);
    terms->termIs(configuredTerm("10", "gold"));
    const auto sm = start();
    EXPECT_EQ(written(), "voice IPV4 {10 to gold}");
}

TEST_F(ClassifierTermsSmTest, asksTheRegistryAtEachChange) {
    const auto sm = start();
    registry->classifierIs({"voice", Classifier::Type::IPV4}, 1);
    terms->termIs(configuredTerm("10", "gold"));
    EXPECT_EQ(written(), "");
    registry->classifierDel({"voice", Classifier::Type::IPV4});
    terms->termIs(configuredTerm("20", "lead"));
    EXPECT_EQ(written(), "voice IPV4 {20 to lead}");
}

TEST_F(ClassifierTermsSmTest, clearsTheActionsOfAllConfiguredTermsBeforeItDies) {
    terms->termIs(configuredTerm("10", "gold"));
    terms->termIs(Config::Term("20"));
    const auto sm = start();
    addClassifierTermAction(state, "voice", Classifier::Type::IPV4, "30", "silver");
    const TestSupport::TraceCapture capture;
    sm->doPrepareToDie();
    EXPECT_EQ(written(), "voice IPV4 {10 to '', 30 to silver}");
    EXPECT_THAT(
        linesOf(capture, {{sm.get(), "terms"}}),
        ElementsAre(line("doPrepareToDie()", ""), updateLine(", termId = 10, targetGroup = "),
                    "deleteClassifierTermAction, classifierName = voice, termId = 10",
                    updateLine(", termId = 20, targetGroup = "),
                    "deleteClassifierTermAction, classifierName = voice, termId = 20"));
}

TEST_F(ClassifierTermsSmTest, clearsNothingOfAClassifierThatPolicyMapsUseBeforeItDies) {
    terms->termIs(configuredTerm("10", "gold"));
    const auto sm = start();
    registry->classifierIs({"voice", Classifier::Type::IPV4}, 1);
    sm->doPrepareToDie();
    EXPECT_EQ(written(), "voice IPV4 {10 to gold}");
}

TEST_F(ClassifierTermsSmTest, ignoresOtherAttributesAndEverythingWithTheZombieFlag) {
    const auto sm = start();
    const TestSupport::TraceCapture capture;
    const Orin::String id("10");
    terms->publishChange(259, &id);
    sm->vexDoZombieReactors(true);
    terms->termIs(configuredTerm("10", "gold"));
    EXPECT_THAT(capture.rawLines(), IsEmpty());
    sm->vexDoZombieReactors(false);
    terms->termIs(configuredTerm("10", "lead"));
    EXPECT_EQ(written(), "voice IPV4 {10 to lead}");
}

TEST_F(ClassifierTermsSmTest, fallsSilentAndHearsEachChangeOnceAgain) {
    const auto sm = start();
    sm->hasNotificationActiveIs(false);
    terms->termIs(configuredTerm("10", "gold"));
    EXPECT_EQ(written(), "");
    sm->hasNotificationActiveIs(true);
    const TestSupport::TraceCapture capture;
    terms->termIs(configuredTerm("20", "lead"));
    EXPECT_EQ(linesOf(capture, {}, "ClassifierTermsSm").size(), 2u);
    EXPECT_EQ(written(), "voice IPV4 {20 to lead}");
}

TEST_F(ClassifierTermsSmTest, leavesTheStateWhenItIsDropped) {
    terms->termIs(configuredTerm("10", "gold"));
    start();
    EXPECT_EQ(written(), "voice IPV4 {10 to gold}");
    EXPECT_FALSE(terms->publisher()->hasSubscribers());
}

TEST_F(ClassifierTermsSmTest, leavesNothingBehindWhenAnAllocationFails) {
    terms->termIs(configuredTerm("10", "gold"));
    const auto isClean = [&] {
        EXPECT_EQ(live<ClassifierTermsSm>(), 0u);
        EXPECT_FALSE(terms->publisher()->hasSubscribers());
        state = State::ClassifiersDir::create();
    };
    EXPECT_GT(TestSupport::failEachAllocation([&] { start(); }, isClean), 4u);
}

TEST_F(ClassifierTermsSmTest, describesItself) {
    EXPECT_THAT(attributesOf(ClassifierTermsSm::kTypeRecord),
                ElementsAre("classifierTermsConfig 1 input watched QosOc::Config::Terms",
                            "classifierName 2 input", "classifierType 3 input",
                            "classifiersWithPmap 4 input QosOc::ClassifiersWithPmap",
                            "classifierStateDir 5 input QosOc::State::ClassifiersDir"));
    terms->termIs(configuredTerm("10", "gold"));
    const auto sm = ClassifierTermsSm::kTypeRecord.construct(
        std::vector<Vex::Value>{Vex::NodeRef(terms), Orin::String("voice"), std::uint64_t{1},
                                Vex::NodeRef(registry), Vex::NodeRef(state)});
    EXPECT_EQ(sm->typeData().fullName, "QosOc::ClassifierTermsSm");
    EXPECT_EQ(written(), "voice IPV6 {10 to gold}");
}

/// The registry is filled before the configuration is read: the root looks at policy maps first.
TEST_F(ClassifierTermsSmTest, findsTheUsesOfAllPolicyMapsWhenTheRootStarts) {
    const auto status = Qos::Status::create();
    const auto pmaps = Qos::PolicyMapTypeStatus::create(Qos::MapType::mapQos);
    const auto pmap = Qos::PolicyMapStatus::create(Orin::String("openconfig:voice:"));
    Qos::PolicyMapClass toGold;
    toGold.action.is(4, 0);
    pmap->classIs("openconfig:voice:10", toGold);
    pmaps->pmapStatusIs(pmap);
    status->pmapTypeStatusIs(pmaps);
    const auto cliConfig = Qos::Input::Config::create();
    const auto groups = Qos::ForwardingGroupNameToTcMap::create();
    groups->tcIs("gold", 0);
    cliConfig->forwardingGroupNameToTcMapIs(groups);
    configured("voice").terms()->termIs(configuredTerm("10", "lead"));
    TestSupport::StateRecorder heard(state);
    const auto root =
        classifierStateSmFactory(status, Acl::Input::Config::create(), cliConfig, configDir, state);
    EXPECT_EQ(written(), "voice IPV4 {10 to gold}");
    EXPECT_THAT(heard.take(), ElementsAre("voice", "voice/state IPV4", "voice/terms", "voice/10",
                                          "voice/10 to gold"));
}

}  // namespace
}  // namespace QosOc
