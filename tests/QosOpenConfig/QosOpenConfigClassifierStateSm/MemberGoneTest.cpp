#include <optional>
#include <string>
#include <tuple>

#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/ReentrancyTest.h"

namespace QosOc {
namespace {

using Orin::String;

class MemberGoneTest;

/// A kind of member that a parent keeps machines for.
struct Kind {
    const char* name;
    /// Publishes what has to be there before the member.
    void (MemberGoneTest::*prepare)();
    void (MemberGoneTest::*bring)();
    void (MemberGoneTest::*take)();
    /// Publishes what the member's machine writes first.
    Orin::Publisher* (MemberGoneTest::*written)();
};

/// A member goes, or comes, while its machine is at work. Afterwards state and machines are the
/// same as if it had waited; with the trace off and on.
class MemberGoneTest : public ReentrantInputs,
                       public ::testing::WithParamInterface<std::tuple<Kind, bool>> {
public:
    void nothing() {}
    void bringClassMap() { addClassMap("openconfig:voice:10"); }
    void takeClassMap() { cmaps->cmapStatusDel("openconfig:voice:10"); }
    void fillClassMaps() {
        qos->cmapTypeStatusDel(Qos::MapType::mapQos);
        bringClassMap();
    }
    void bringClassMaps() { qos->cmapTypeStatusIs(cmaps); }
    void takeClassMaps() { qos->cmapTypeStatusDel(Qos::MapType::mapQos); }
    void bringPolicyMap() { addPolicyMap("openconfig:voice:10"); }
    void takePolicyMap() { pmaps->pmapStatusDel("openconfig:voice:"); }
    void fillPolicyMaps() {
        qos->pmapTypeStatusDel(Qos::MapType::mapQos);
        bringPolicyMap();
    }
    void bringPolicyMaps() { qos->pmapTypeStatusIs(pmaps); }
    void takePolicyMaps() { qos->pmapTypeStatusDel(Qos::MapType::mapQos); }
    void bringList() { addList("openconfig:voice:10"); }
    void takeList() { lists->aclConfigDel("openconfig:voice:10"); }
    void fillLists() {
        acl->aclTypeConfigDel(Acl::AclType::ipv4);
        bringList();
    }
    void bringLists() { acl->aclTypeConfigIs(lists); }
    void takeLists() { acl->aclTypeConfigDel(Acl::AclType::ipv4); }
    void bringListWithoutRules() {
        bringList();
        takeRules();
    }
    void bringRules() { list().aclSubConfigIs(rules()); }
    void takeRules() { list().aclSubConfigIs(nullptr); }
    void bringConfiguration() {
        classifier->termsIs(configuredTerms());
        configured->classifierIs(classifier);
    }
    void takeConfiguration() { configured->classifierDel("voice"); }
    void bringConfigurationWithoutTerms() { configured->classifierIs(classifier); }
    void bringTerms() { classifier->termsIs(configuredTerms()); }
    void takeTerms() { classifier->termsIs(nullptr); }
    Orin::Publisher* classifiers() { return root->publisher(); }
    Orin::Publisher* termsOfVoice() { return terms(); }

protected:
    MemberGoneTest() {
        if (std::get<1>(GetParam())) trace_.emplace();
        (this->*kind.prepare)();
    }
    void bring() { (this->*kind.bring)(); }
    void take() { (this->*kind.take)(); }
    Orin::Publisher* written() { return (this->*kind.written)(); }
    /// The machines and the state after `act`, which begins with the machines at work.
    template <class Act>
    std::string after(Act act) {
        start();
        act();
        const std::string result = machines() + state();
        machine = nullptr;
        return result;
    }
    /// Starts over without the member and without state.
    void clear() {
        take();
        root->classifierDel("voice");
    }
    static std::string machines() {
        return counts<CmapTypeStatusSm, CmapStatusSm, PmapTypeStatusSm, PmapStatusSm,
                      AclTypeStateSm, AclStateSm, AclSubStateSm, ClassifierConfigSm,
                      ClassifierTermsSm>();
    }

    const Kind kind = std::get<0>(GetParam());
    const Orin::Ptr<Config::Classifier> classifier = Config::Classifier::create(String("voice"));

private:
    template <class... Sm>
    static std::string counts() {
        return (
            (std::string(Sm::kTypeName) + ' ' + std::to_string(TestSupport::live<Sm>()) + '\n') +
            ...);
    }
    static Orin::Ptr<Config::Terms> configuredTerms() {
        const auto terms = Config::Terms::create();
        Config::Term term{String("10")};
        term.actions = Config::TermActions{"gold"};
        terms->termIs(term);
        return terms;
    }
    Acl::AclConfig& list() { return **lists->aclConfig().find("openconfig:voice:10"); }

    std::optional<TestSupport::TraceCapture> trace_;
};

using Test = MemberGoneTest;
const Kind kKinds[] = {
    {"aClassMap", &Test::nothing, &Test::bringClassMap, &Test::takeClassMap, &Test::classifiers},
    {"allClassMaps", &Test::fillClassMaps, &Test::bringClassMaps, &Test::takeClassMaps,
     &Test::classifiers},
    {"aPolicyMap", &Test::nothing, &Test::bringPolicyMap, &Test::takePolicyMap, &Test::classifiers},
    {"allPolicyMaps", &Test::fillPolicyMaps, &Test::bringPolicyMaps, &Test::takePolicyMaps,
     &Test::classifiers},
    {"anAccessList", &Test::nothing, &Test::bringList, &Test::takeList, &Test::classifiers},
    {"allAccessLists", &Test::fillLists, &Test::bringLists, &Test::takeLists, &Test::classifiers},
    {"theRules", &Test::bringListWithoutRules, &Test::bringRules, &Test::takeRules,
     &Test::termsOfVoice},
    {"aConfiguredClassifier", &Test::nothing, &Test::bringConfiguration, &Test::takeConfiguration,
     &Test::classifiers},
    {"theConfiguredTerms", &Test::bringConfigurationWithoutTerms, &Test::bringTerms,
     &Test::takeTerms, &Test::classifiers},
};

INSTANTIATE_TEST_SUITE_P(Each, MemberGoneTest,
                         ::testing::Combine(::testing::ValuesIn(kKinds), ::testing::Bool()),
                         [](const auto& each) {
                             return std::string(std::get<0>(each.param).name) +
                                    (std::get<1>(each.param) ? "Traced" : "");
                         });

TEST_P(MemberGoneTest, leavesNothingMoreThanAMemberThatGoesLater) {
    const std::string nested = after([this] {
        const Once once(written(), [this] { take(); });
        bring();
    });
    clear();
    EXPECT_EQ(nested, after([this] {
                  bring();
                  take();
              }));
}

TEST_P(MemberGoneTest, leavesTheSameAsAMemberThatGoesAndComesBackLater) {
    const std::string nested = after([this] {
        const Once once(written(), [this] {
            take();
            bring();
        });
        bring();
    });
    clear();
    EXPECT_EQ(nested, after([this] {
                  bring();
                  take();
                  bring();
              }));
}

TEST_P(MemberGoneTest, canComeAgainAfterItWentWhileItsMachineWasMade) {
    const std::string nested = after([this] {
        {
            const Once once(written(), [this] { take(); });
            bring();
        }
        bring();
    });
    clear();
    EXPECT_EQ(nested, after([this] {
                  bring();
                  take();
                  bring();
              }));
}

// The parent's parent is notified in the middle of the parent's work.
class ParentGoneTest : public ReentrancyTest {};

INSTANTIATE_TEST_SUITE_P(Traced, ParentGoneTest, kTraceOffAndOn, traceName);

TEST_P(ParentGoneTest, takesAClassMapAlongThatIsBeingMade) {
    start();
    const Once once(root->publisher(), [this] { qos->cmapTypeStatusDel(Qos::MapType::mapQos); });
    addClassMap("openconfig:voice:10");
    EXPECT_EQ(TestSupport::live<CmapStatusSm>(), 0u);
    EXPECT_EQ(state(), "voice IPV4");
}

TEST_P(ParentGoneTest, takesAPolicyMapAlongThatIsBeingMade) {
    start();
    const Once once(root->publisher(), [this] { qos->pmapTypeStatusDel(Qos::MapType::mapQos); });
    addPolicyMap("openconfig:voice:10");
    EXPECT_EQ(TestSupport::live<PmapStatusSm>(), 0u);
    EXPECT_EQ(state(), "voice IPV4 {10 to gold}");
}

TEST_P(ParentGoneTest, takesAnAccessListAlongThatIsBeingMade) {
    start();
    const Once once(root->publisher(), [this] { acl->aclTypeConfigDel(Acl::AclType::ipv4); });
    addList("openconfig:voice:10");
    EXPECT_EQ(TestSupport::live<AclStateSm>() + TestSupport::live<AclSubStateSm>(), 0u);
    EXPECT_EQ(state(), "voice IPV4 {10}");
}

TEST_P(ParentGoneTest, takesTheRulesAlongThatAreBeingRead) {
    start();
    addList("openconfig:voice:10")->aclSubConfigIs(nullptr);
    const Once once(terms(), [this] { lists->aclConfigDel("openconfig:voice:10"); });
    (*lists->aclConfig().find("openconfig:voice:10"))->aclSubConfigIs(rules());
    EXPECT_EQ(TestSupport::live<AclStateSm>() + TestSupport::live<AclSubStateSm>(), 0u);
    EXPECT_EQ(state(), "voice IPV4 {10}");
}

}  // namespace
}  // namespace QosOc
