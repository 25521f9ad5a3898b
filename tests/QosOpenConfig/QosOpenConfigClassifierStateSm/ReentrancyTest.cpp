#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/ReentrancyTest.h"

namespace QosOc {
namespace {

using Orin::String;
using Type = Classifier::Type;

INSTANTIATE_TEST_SUITE_P(Traced, ReentrancyTest, kTraceOffAndOn, traceName);

TEST_P(ReentrancyTest, entersATermOnce) {
    const Once once(root->publisher(),
                    [&] { addClassifierTermAction(root, "voice", Type::IPV4, "10", "gold"); });
    addClassifierTerm(root, "voice", Type::IPV4, "10");
    EXPECT_EQ(state(), "voice IPV4 {10 to gold}");
    deleteClassifierTerm(root, "voice", "10");
    EXPECT_EQ(state(), "voice IPV4");
}

TEST_P(ReentrancyTest, writesATermForAListThatComesWithItsClassMap) {
    start();
    const Once once(root->publisher(), [&] { addList("openconfig:voice:10"); });
    addClassMap("openconfig:voice:10");
    EXPECT_EQ(state(), "voice IPV4 {10 when ipv4 46}");
    cmaps->cmapStatusDel("openconfig:voice:10");
    EXPECT_EQ(state(), "voice IPV4");
}

TEST_P(ReentrancyTest, removesTheLastTermsOneWithinTheOther) {
    addClassMap("openconfig:voice:10");
    addClassMap("openconfig:voice:20");
    start();
    const Once once(terms(), [&] { cmaps->cmapStatusDel("openconfig:voice:20"); });
    cmaps->cmapStatusDel("openconfig:voice:10");
    EXPECT_EQ(state(), "voice IPV4");
}

TEST_P(ReentrancyTest, survivesTheEndOfAClassifierThatIsBeingMade) {
    start();
    const auto cmap = Qos::ClassMapStatus::create(String("data"));
    cmaps->cmapStatusIs(cmap);
    const Once once(root->publisher(), [&] { cmaps->cmapStatusDel("data"); });
    cmap->matchIs(Qos::ClassMapMatchOption::matchIpAccessGroup, "");
    EXPECT_EQ(state(), "");
}

TEST_P(ReentrancyTest, writesNoConditionsToATermThatIsGoneAgain) {
    addClassifierTerm(root, "voice", Type::IPV4, "5");
    const Once once(terms(), [&] { deleteClassifierTerm(root, "voice", "10"); });
    Orin::Vector<unsigned char> values{46};
    addClassifierTermCondition(root, "voice", Type::IPV4, "10", values);
    EXPECT_EQ(state(), "voice IPV4 {5}");
}

TEST_P(ReentrancyTest, survivesTheEndOfTheListThatIsBeingWritten) {
    addClassMap("openconfig:voice:10");
    addClassMap("openconfig:voice:5");
    start();
    addList("openconfig:voice:10")->aclSubConfigIs(nullptr);
    const Once once(terms(), [&] { lists->aclConfigIs("openconfig:voice:10", nullptr); });
    (*lists->aclConfig().find("openconfig:voice:10"))->aclSubConfigIs(rules());
    EXPECT_EQ(state(), "voice IPV4 {10, 5}");
}

TEST_P(ReentrancyTest, survivesTheEndOfTheConfigurationThatIsBeingWritten) {
    start();
    auto classifier = Config::Classifier::create(String("voice"));
    const auto configuredTerms = Config::Terms::create();
    classifier->termsIs(configuredTerms);
    configured->classifierIs(classifier);
    classifier = nullptr;
    const Once once(root->publisher(), [&] { configured->classifierDel("voice"); });
    Config::Term term{String("10")};
    term.actions = Config::TermActions{"gold"};
    configuredTerms->termIs(term);
    EXPECT_EQ(state(), "voice IPV4 {10 to gold}");
}

TEST_P(ReentrancyTest, makesOneMachineForAClassMapThatIsPublishedMeanwhile) {
    start();
    const Once once(root->publisher(), [&] {
        const String name("data");
        cmaps->publishChange(Qos::ClassMapTypeStatus::kCmapStatus.id, &name);
    });
    addClassMap("data");
    EXPECT_EQ(TestSupport::live<CmapStatusSm>(), 1u);
    cmaps->cmapStatusDel("data");
    EXPECT_EQ(TestSupport::live<CmapStatusSm>(), 0u);
    EXPECT_EQ(state(), "");
}

TEST_P(ReentrancyTest, sweepsStaleConditionsWhenTermsGoMeanwhile) {
    writeStale("stale");
    for (const char* name : {"openconfig:data:10", "openconfig:voice:10"}) {
        addClassMap(name);
        addList(name);
    }
    const Once once(
        terms(),
        [&] {
            cmaps->cmapStatusDel("openconfig:data:10");
            cmaps->cmapStatusDel("openconfig:voice:10");
        },
        [&] {
            const State::Term* term = root->classifier("voice")->terms()->term("10");
            return term != nullptr && term->conditions;
        });
    start();
    EXPECT_EQ(state(), "data IPV4; voice IPV4 {stale}");
}

TEST_P(ReentrancyTest, survivesTheEndOfAListThatIsTakingItsStateBack) {
    addList("openconfig:voice:10");
    start();
    const Once once(terms(), [&] {
        const String name("openconfig:voice:10");
        lists->publishChange(Acl::Input::AclTypeConfig::kAclConfig.id, &name);
    });
    lists->aclConfigIs("openconfig:voice:10", nullptr);
    EXPECT_EQ(TestSupport::live<AclStateSm>(), 0u);
    EXPECT_EQ(state(), "voice IPV4 {10}");
}

TEST_P(ReentrancyTest, addsATermToTheClassifierThatIsMadeAgainMeanwhile) {
    const Once once(root->publisher(), [&] {
        root->classifierDel("voice");
        addClassifier(root, "voice", Type::IPV6);
    });
    addClassifierTermAction(root, "voice", Type::IPV4, "10", "gold");
    EXPECT_EQ(state(), "voice IPV6 {10 to gold}");
}

TEST_P(ReentrancyTest, addsNoTermToAClassifierThatGoesMeanwhile) {
    const Once once(root->publisher(), [&] { root->classifierDel("voice"); });
    addClassifierTermAction(root, "voice", Type::IPV4, "10", "gold");
    EXPECT_EQ(state(), "");
}

TEST_P(ReentrancyTest, protectsTheTermsOfTheListsThatTheStartWalkedOver) {
    addList("openconfig:voice:10");
    addList("openconfig:voice:20");
    writeStale("15");
    const Once once(
        terms(), [&] { addList("openconfig:voice:15"); },
        [&] { return root->classifier("voice")->terms()->term("20") != nullptr; });
    start();
    EXPECT_EQ(state(), "voice IPV4 {10 when ipv4 46, 15, 20 when ipv4 46}");
}

}  // namespace
}  // namespace QosOc
