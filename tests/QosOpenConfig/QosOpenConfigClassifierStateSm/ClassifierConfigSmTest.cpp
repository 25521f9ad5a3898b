#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifierConfigSm.h"
#include "platform/Vex/Errors.h"
#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/MachineTest.h"

namespace QosOc {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ClassifierConfigSmTest : public MachineTest {
protected:
    using Configured = Orin::Ptr<Config::Classifier>;
    using Terms = Orin::Ptr<Config::Terms>;

    static Terms termsOf(const char* id, const char* targetGroup) {
        auto terms = Config::Terms::create();
        terms->termIs(configuredTerm(id, targetGroup));
        return terms;
    }
    static Configured classifierOf(const Terms& terms,
                                   std::optional<Classifier::Type> type = Classifier::Type::IPV4) {
        auto classifier = Config::Classifier::create(Orin::String("voice"));
        classifier->configIs({"voice", type});
        classifier->termsIs(terms);
        return classifier;
    }
    Orin::Ptr<ClassifierConfigSm> start(const Configured& classifier) {
        return classifierConfigSmFactory(classifier, registry, state);
    }
    static ClassifierTermsSm* child(const ClassifierConfigSm& sm) {
        return childOf<ClassifierTermsSm>(sm, "classifierTermsSm");
    }
    static std::string line(const std::string& function) {
        return machineLine(
            "own", function, "config",
            "void QosOc::ClassifierConfigSm::" + function + "(), classifierName = voice");
    }
    static std::string termsLine(const std::string& function) {
        return machineLine("own", function, "terms",
                           "void QosOc::ClassifierTermsSm::" + function +
                               "(), classifierName = voice, classifierType = IPV4");
    }
};

TEST_F(ClassifierConfigSmTest, makesNoChildAndWritesNothingWithoutTerms) {
    const TestSupport::TraceCapture capture;
    const auto sm = start(classifierOf(nullptr));
    EXPECT_EQ(child(*sm), nullptr);
    EXPECT_EQ(written(), "");
    EXPECT_THAT(linesOf(capture, {{sm.get(), "config"}}),
                ElementsAre(line("handleInitialized"), line("handleClassifierTerms")));
}

TEST_F(ClassifierConfigSmTest, writesNothingForTermsThatAreEmpty) {
    const auto sm = start(classifierOf(Config::Terms::create()));
    EXPECT_NE(child(*sm), nullptr);
    EXPECT_EQ(written(), "");
}

TEST_F(ClassifierConfigSmTest, handsNameAndTypeToItsChild) {
    const auto sm = start(classifierOf(termsOf("10", "gold"), Classifier::Type::IPV6));
    EXPECT_EQ(written(), "voice IPV6 {10 to gold}");
    const auto* machine = child(*sm);
    ASSERT_NE(machine, nullptr);
    const auto read = [&](const char* name) {
        return Vex::attributeNamed(machine->typeData(), name)->read(machine);
    };
    EXPECT_EQ(read("classifierName"), Vex::Value(Orin::String("voice")));
    EXPECT_EQ(read("classifierType"), Vex::Value(std::uint64_t{1}));
    EXPECT_EQ(read("classifiersWithPmap"), Vex::Value(Vex::NodeRef(registry)));
    EXPECT_EQ(read("classifierStateDir"), Vex::Value(Vex::NodeRef(state)));
}

TEST_F(ClassifierConfigSmTest, takesAnUnsetTypeForIpv4) {
    const auto sm = start(classifierOf(termsOf("10", "gold"), std::nullopt));
    EXPECT_EQ(written(), "voice IPV4 {10 to gold}");
}

TEST_F(ClassifierConfigSmTest, makesItsChildWhenTermsCome) {
    const auto classifier = classifierOf(nullptr);
    const auto sm = start(classifier);
    classifier->termsIs(termsOf("10", "gold"));
    EXPECT_EQ(written(), "voice IPV4 {10 to gold}");
}

TEST_F(ClassifierConfigSmTest, clearsTheActionsAndDropsTheChildWhenTheTermsGo) {
    const auto classifier = classifierOf(termsOf("10", "gold"));
    const auto sm = start(classifier);
    const auto* gone = child(*sm);
    const TestSupport::TraceCapture capture;
    classifier->termsIs(nullptr);
    EXPECT_EQ(written(), "voice IPV4 {10 to ''}");
    EXPECT_EQ(live<ClassifierTermsSm>(), 0u);
    const Lines lines = linesOf(capture, {{sm.get(), "config"}, {gone, "terms"}});
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0], line("handleClassifierTerms"));
    EXPECT_EQ(lines[1], termsLine("doPrepareToDie"));
    EXPECT_EQ(lines[3], "deleteClassifierTermAction, classifierName = voice, termId = 10");
}

TEST_F(ClassifierConfigSmTest, doesNothingWhenThereWereNeitherTermsNorAChild) {
    const auto classifier = classifierOf(nullptr);
    const auto sm = start(classifier);
    const TestSupport::TraceCapture capture;
    classifier->publishChange(Config::Classifier::kTerms.id, nullptr);
    EXPECT_THAT(linesOf(capture, {{sm.get(), "config"}}),
                ElementsAre(line("handleClassifierTerms")));
    EXPECT_EQ(written(), "");
}

TEST_F(ClassifierConfigSmTest, keepsItsChildWhileAllItsInputsAreTheSame) {
    const auto classifier = classifierOf(termsOf("10", "gold"));
    const auto sm = start(classifier);
    const auto* held = child(*sm);
    classifier->publishChange(Config::Classifier::kTerms.id, nullptr);
    EXPECT_EQ(child(*sm), held);
}

TEST_F(ClassifierConfigSmTest, silencesTheChildOfReplacedTermsWithoutCleanUp) {
    const auto old = termsOf("10", "gold");
    const auto classifier = classifierOf(old);
    const auto sm = start(classifier);
    const auto kept = Orin::Ptr<ClassifierTermsSm>::sharing(child(*sm));
    classifier->termsIs(termsOf("20", "lead"));
    EXPECT_EQ(written(), "voice IPV4 {10 to gold, 20 to lead}");
    EXPECT_NE(child(*sm), kept.get());
    EXPECT_FALSE(kept->notificationActive());
    old->termIs(configuredTerm("10", "silver"));
    EXPECT_EQ(written(), "voice IPV4 {10 to gold, 20 to lead}");
}

TEST_F(ClassifierConfigSmTest, replacesItsChildWhenTheTypeHasChanged) {
    const auto classifier = classifierOf(termsOf("10", "gold"));
    const auto sm = start(classifier);
    const auto kept = Orin::Ptr<ClassifierTermsSm>::sharing(child(*sm));
    classifier->configIs({"voice", Classifier::Type::IPV6});
    EXPECT_EQ(child(*sm), kept.get());
    classifier->publishChange(Config::Classifier::kTerms.id, nullptr);
    EXPECT_NE(child(*sm), kept.get());
    EXPECT_FALSE(kept->notificationActive());
}

TEST_F(ClassifierConfigSmTest, replacesAChildMadeFromAnyOtherInput) {
    const auto terms = termsOf("10", "gold");
    const auto sm = start(classifierOf(terms));
    const auto type = Classifier::Type::IPV4;
    auto held = Orin::Ptr<ClassifierTermsSm>::sharing(child(*sm));
    EXPECT_EQ(sm->classifierTermsSmIs(terms, "voice", type, registry, state), held);
    const auto isReplaced = [&](const Orin::Ptr<ClassifierTermsSm>& made) {
        EXPECT_NE(made, held);
        EXPECT_FALSE(held->notificationActive());
        EXPECT_TRUE(made->notificationActive());
        held = made;
    };
    isReplaced(sm->classifierTermsSmIs(terms, "video", type, registry, state));
    isReplaced(sm->classifierTermsSmIs(terms, "video", Classifier::Type::IPV6, registry, state));
    const auto otherRegistry = ClassifiersWithPmap::ClassifiersWithPmapIs();
    isReplaced(
        sm->classifierTermsSmIs(terms, "video", Classifier::Type::IPV6, otherRegistry, state));
    isReplaced(sm->classifierTermsSmIs(terms, "video", Classifier::Type::IPV6, otherRegistry,
                                       State::ClassifiersDir::create()));
}

TEST_F(ClassifierConfigSmTest, refusesNullTerms) {
    const auto sm = start(classifierOf(termsOf("10", "gold")));
    const auto* held = child(*sm);
    try {
        sm->classifierTermsSmIs(nullptr, "voice", Classifier::Type::IPV4, registry, state);
        FAIL() << "nothing thrown";
    } catch (const Vex::MutatorArgNullPointerException& error) {
        EXPECT_THAT(error.what(), ::testing::HasSubstr("classifierTermsConfig"));
    }
    EXPECT_EQ(child(*sm), held);
}

TEST_F(ClassifierConfigSmTest, takesItsChildOutSilencedAndWithoutCleanUp) {
    const auto sm = start(classifierOf(termsOf("10", "gold")));
    const auto removed = sm->classifierTermsSmDel();
    ASSERT_NE(removed, nullptr);
    EXPECT_FALSE(removed->notificationActive());
    EXPECT_EQ(child(*sm), nullptr);
    EXPECT_EQ(written(), "voice IPV4 {10 to gold}");
    EXPECT_EQ(sm->classifierTermsSmDel(), nullptr);
}

TEST_F(ClassifierConfigSmTest, shutsItsChildDownFirstWhenItDies) {
    const auto sm = start(classifierOf(termsOf("10", "gold")));
    const auto* gone = child(*sm);
    const TestSupport::TraceCapture capture;
    sm->doPrepareToDie();
    EXPECT_EQ(written(), "voice IPV4 {10 to ''}");
    EXPECT_EQ(live<ClassifierTermsSm>(), 0u);
    const Lines lines = linesOf(capture, {{sm.get(), "config"}, {gone, "terms"}});
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0], line("doPrepareToDie"));
    EXPECT_EQ(lines[1], termsLine("doPrepareToDie"));
}

TEST_F(ClassifierConfigSmTest, onlyTracesItsEndWithoutAChild) {
    const auto sm = start(classifierOf(nullptr));
    const TestSupport::TraceCapture capture;
    sm->doPrepareToDie();
    EXPECT_THAT(linesOf(capture, {{sm.get(), "config"}}), ElementsAre(line("doPrepareToDie")));
}

TEST_F(ClassifierConfigSmTest, leavesTheStateWhenItIsDropped) {
    const auto classifier = classifierOf(termsOf("10", "gold"));
    start(classifier);
    EXPECT_EQ(written(), "voice IPV4 {10 to gold}");
    EXPECT_EQ(live<ClassifierConfigSm>() + live<ClassifierTermsSm>(), 0u);
    EXPECT_FALSE(classifier->publisher()->hasSubscribers());
    EXPECT_FALSE(classifier->terms()->publisher()->hasSubscribers());
}

TEST_F(ClassifierConfigSmTest, ignoresOtherAttributesAndEverythingWithTheZombieFlag) {
    const auto classifier = classifierOf(nullptr);
    const auto sm = start(classifier);
    const TestSupport::TraceCapture capture;
    classifier->configIs({"voice", Classifier::Type::IPV6});
    sm->vexDoZombieReactors(true);
    classifier->termsIs(termsOf("10", "gold"));
    EXPECT_THAT(capture.rawLines(), IsEmpty());
    EXPECT_EQ(written(), "");
}

TEST_F(ClassifierConfigSmTest, fallsSilentWithItsChildAndHearsEachChangeOnceAgain) {
    const auto terms = termsOf("10", "gold");
    const auto classifier = classifierOf(terms);
    const auto sm = start(classifier);
    sm->hasNotificationActiveIs(false);
    EXPECT_FALSE(classifier->publisher()->hasSubscribers());
    terms->termIs(configuredTerm("10", "lead"));
    EXPECT_EQ(written(), "voice IPV4 {10 to gold}");
    sm->hasNotificationActiveIs(true);
    const TestSupport::TraceCapture capture;
    terms->termIs(configuredTerm("20", "lead"));
    EXPECT_EQ(linesOf(capture, {}, "ClassifierTermsSm").size(), 2u);
    EXPECT_EQ(written(), "voice IPV4 {10 to gold, 20 to lead}");
}

TEST_F(ClassifierConfigSmTest, leavesNothingBehindWhenAnAllocationFails) {
    const auto classifier = classifierOf(termsOf("10", "gold"));
    const auto isClean = [&] {
        EXPECT_EQ(live<ClassifierConfigSm>() + live<ClassifierTermsSm>(), 0u);
        EXPECT_FALSE(classifier->publisher()->hasSubscribers());
        EXPECT_FALSE(classifier->terms()->publisher()->hasSubscribers());
        state = State::ClassifiersDir::create();
    };
    EXPECT_GT(TestSupport::failEachAllocation([&] { start(classifier); }, isClean), 4u);
}

TEST_F(ClassifierConfigSmTest, describesItself) {
    EXPECT_THAT(attributesOf(ClassifierConfigSm::kTypeRecord),
                ElementsAre("classifierConfig 1 input watched QosOc::Config::Classifier",
                            "classifiersWithPmap 2 input QosOc::ClassifiersWithPmap",
                            "classifierStateDir 3 input QosOc::State::ClassifiersDir",
                            "classifierTermsSm 4 child QosOc::ClassifierTermsSm"));
    const auto sm = ClassifierConfigSm::kTypeRecord.construct(
        std::vector<Vex::Value>{Vex::NodeRef(classifierOf(termsOf("10", "gold"))),
                                Vex::NodeRef(registry), Vex::NodeRef(state)});
    EXPECT_EQ(sm->typeData().fullName, "QosOc::ClassifierConfigSm");
    EXPECT_EQ(written(), "voice IPV4 {10 to gold}");
}

}  // namespace
}  // namespace QosOc
