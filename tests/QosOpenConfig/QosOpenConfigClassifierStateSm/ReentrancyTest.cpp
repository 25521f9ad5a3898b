#include <functional>
#include <string>
#include <utility>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifierStateSm.h"
#include "tests/QosOpenConfig/StateTest.h"
#include "tests/support/LiveCounts.h"

namespace QosOc {
namespace {

using Orin::String;
using Type = Classifier::Type;

/// Does something the first time that it is told of a change, and something is so.
class Once {
public:
    Once(
        Orin::Publisher* publisher, std::function<void()> act,
        std::function<bool()> when = [] { return true; })
        : publisher_(publisher), act_(std::move(act)), when_(std::move(when)) {
        record_.owner = this;
        record_.dispatch = [](Orin::Publisher&, Orin::Subscriber& record, Orin::AttributeId,
                              const void*) noexcept {
            auto& once = *static_cast<Once*>(record.owner);
            if (once.act_ && once.when_()) std::exchange(once.act_, {})();
        };
        publisher_->subscriberAdd(record_);
    }
    ~Once() {
        if (record_.isLinked()) publisher_->subscriberDel(record_);
    }
    Once(const Once&) = delete;
    Once& operator=(const Once&) = delete;

private:
    Orin::Publisher* publisher_;
    std::function<void()> act_;
    std::function<bool()> when_;
    Orin::Subscriber record_;
};

/// Whoever is told of what is written changes what it is written from.
class ReentrancyTest : public StateTest {
protected:
    ReentrancyTest() {
        qos->cmapTypeStatusIs(cmaps);
        qos->pmapTypeStatusIs(pmaps);
        acl->aclTypeConfigIs(lists);
        cli->forwardingGroupNameToTcMapIs(groups);
        groups->tcIs("gold", 1);
    }
    void start() {
        machine = ClassifierStateSm::ClassifierStateSmIs(qos, acl, cli, configured, root);
    }
    void addClassMap(const char* name) {
        const auto cmap = Qos::ClassMapStatus::create(String(name));
        cmap->matchIs(Qos::ClassMapMatchOption::matchIpAccessGroup, "");
        cmaps->cmapStatusIs(cmap);
    }
    Orin::Ptr<Acl::AclConfig> addList(const char* name) {
        const auto list = Acl::AclConfig::create(String(name), Acl::AclType::ipv4);
        lists->aclConfigIs(list->aclName(), list);
        list->aclSubConfigIs(rules());
        return list;
    }
    static Orin::Ptr<Acl::AclSubConfig> rules() {
        Acl::IpRuleConfig rule;
        rule.filter.dscpEnabled = true;
        rule.filter.dscpValue = 46;
        const auto sub = Acl::AclSubConfig::create();
        sub->ipRuleByIdIs({1}, rule);
        sub->ruleIdBySequenceIs(10, {1});
        return sub;
    }
    static Qos::PolicyMapClass classTo(std::uint32_t tc) {
        Qos::PolicyMapClass to;
        to.action.is(Qos::PolicyMapClass::kSetTrafficClass, tc);
        return to;
    }
    Orin::Ptr<Qos::PolicyMapStatus> addPolicyMap(const char* className) {
        const auto pmap = Qos::PolicyMapStatus::create(String("openconfig:voice:"));
        pmap->classIs(className, classTo(1));
        pmaps->pmapStatusIs(pmap);
        return pmap;
    }
    Orin::Publisher* terms() { return root->classifier("voice")->terms()->publisher(); }
    void writeStale(const char* id) {
        State::Term term{String(id)};
        term.conditions.emplace();
        addClassifier(root, "voice", Type::IPV4);
        root->classifierIs("voice")->termsIs()->termIs(term);
    }

    Orin::Ptr<Qos::Status> qos = Qos::Status::create();
    Orin::Ptr<Acl::Input::Config> acl = Acl::Input::Config::create();
    Orin::Ptr<Qos::Input::Config> cli = Qos::Input::Config::create();
    Orin::Ptr<Config::ClassifiersDir> configured = Config::ClassifiersDir::create();
    Orin::Ptr<Qos::ClassMapTypeStatus> cmaps =
        Qos::ClassMapTypeStatus::create(Qos::MapType::mapQos);
    Orin::Ptr<Qos::PolicyMapTypeStatus> pmaps =
        Qos::PolicyMapTypeStatus::create(Qos::MapType::mapQos);
    Orin::Ptr<Acl::Input::AclTypeConfig> lists =
        Acl::Input::AclTypeConfig::create(Acl::AclType::ipv4);
    Orin::Ptr<Qos::ForwardingGroupNameToTcMap> groups = Qos::ForwardingGroupNameToTcMap::create();
    Orin::Ptr<ClassifierStateSm> machine;
};

TEST_F(ReentrancyTest, entersATermOnce) {
    const Once once(root->publisher(),
                    [&] { addClassifierTermAction(root, "voice", Type::IPV4, "10", "gold"); });
    addClassifierTerm(root, "voice", Type::IPV4, "10");
    EXPECT_EQ(state(), "voice IPV4 {10 to gold}");
    deleteClassifierTerm(root, "voice", "10");
    EXPECT_EQ(state(), "voice IPV4");
}

TEST_F(ReentrancyTest, writesATermForAListThatComesWithItsClassMap) {
    start();
    const Once once(root->publisher(), [&] { addList("openconfig:voice:10"); });
    addClassMap("openconfig:voice:10");
    EXPECT_EQ(state(), "voice IPV4 {10 when ipv4 46}");
    cmaps->cmapStatusDel("openconfig:voice:10");
    EXPECT_EQ(state(), "voice IPV4");
}

TEST_F(ReentrancyTest, removesTheLastTermsOneWithinTheOther) {
    addClassMap("openconfig:voice:10");
    addClassMap("openconfig:voice:20");
    start();
    const Once once(terms(), [&] { cmaps->cmapStatusDel("openconfig:voice:20"); });
    cmaps->cmapStatusDel("openconfig:voice:10");
    EXPECT_EQ(state(), "voice IPV4");
}

TEST_F(ReentrancyTest, survivesTheEndOfAClassifierThatIsBeingMade) {
    start();
    const auto cmap = Qos::ClassMapStatus::create(String("data"));
    cmaps->cmapStatusIs(cmap);
    const Once once(root->publisher(), [&] { cmaps->cmapStatusDel("data"); });
    cmap->matchIs(Qos::ClassMapMatchOption::matchIpAccessGroup, "");
    EXPECT_EQ(state(), "");
}

TEST_F(ReentrancyTest, writesNoConditionsToATermThatIsGoneAgain) {
    addClassifierTerm(root, "voice", Type::IPV4, "5");
    const Once once(terms(), [&] { deleteClassifierTerm(root, "voice", "10"); });
    Orin::Vector<unsigned char> values{46};
    addClassifierTermCondition(root, "voice", Type::IPV4, "10", values);
    EXPECT_EQ(state(), "voice IPV4 {5}");
}

TEST_F(ReentrancyTest, survivesTheEndOfTheListThatIsBeingWritten) {
    addClassMap("openconfig:voice:10");
    addClassMap("openconfig:voice:5");
    start();
    addList("openconfig:voice:10")->aclSubConfigIs(nullptr);
    const Once once(terms(), [&] { lists->aclConfigIs("openconfig:voice:10", nullptr); });
    (*lists->aclConfig().find("openconfig:voice:10"))->aclSubConfigIs(rules());
    EXPECT_EQ(state(), "voice IPV4 {10, 5}");
}

TEST_F(ReentrancyTest, survivesTheEndOfTheConfigurationThatIsBeingWritten) {
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

TEST_F(ReentrancyTest, makesOneMachineForAClassMapThatIsPublishedMeanwhile) {
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

TEST_F(ReentrancyTest, asksForTheGroupOnceTheTermIsThere) {
    const auto pmap = addPolicyMap("openconfig:voice:5");
    start();
    const Once once(terms(), [&] { groups->tcIs("fifth", 5); });
    pmap->classIs("openconfig:voice:10", classTo(5));
    pmap->versionIs(1);
    EXPECT_EQ(state(), "voice IPV4 {10 to fifth, 5 to gold}");
}

TEST_F(ReentrancyTest, survivesTheEndOfThePolicyMapThatIsBeingWritten) {
    const auto pmap = addPolicyMap("openconfig:voice:10");
    start();
    pmap->classIs("openconfig:voice:10", classTo(5));
    const Once once(terms(), [&] { pmaps->pmapStatusDel("openconfig:voice:"); });
    pmap->versionIs(1);
    EXPECT_EQ(TestSupport::live<PmapStatusSm>(), 0u);
    EXPECT_EQ(state(), "voice IPV4 {10 to ''}");
}

TEST_F(ReentrancyTest, tellsAPolicyMapThatWentNothingMore) {
    addPolicyMap("openconfig:voice:10");
    start();
    const Once once(terms(), [&] {
        pmaps->pmapStatusDel("openconfig:voice:");
        groups->tcIs("gold", 1);
    });
    groups->tcDel("gold");
    EXPECT_EQ(state(), "voice IPV4 {10 to ''}");
}

TEST_F(ReentrancyTest, clearsStaleActionsWhenTermsGoMeanwhile) {
    groups->tcIs("fifth", 5);
    const auto pmap = addPolicyMap("openconfig:voice:20");
    addClassMap("openconfig:voice:10");
    start();
    const Once once(terms(), [&] { cmaps->cmapStatusDel("openconfig:voice:10"); });
    pmap->classDel("openconfig:voice:20");
    pmap->classIs("openconfig:voice:10", classTo(5));
    pmap->versionIs(1);
    EXPECT_EQ(state(), "voice IPV4 {20 to ''}");
}

TEST_F(ReentrancyTest, clearsStaleActionsWhenGroupsGoMeanwhile) {
    groups->tcIs("fifth", 5);
    const auto pmap = addPolicyMap("openconfig:voice:20");
    addClassMap("openconfig:voice:10");
    start();
    const Once once(terms(), [&] { groups->tcDel("fifth"); });
    pmap->classDel("openconfig:voice:20");
    pmap->classIs("openconfig:voice:10", classTo(5));
    pmap->versionIs(1);
    EXPECT_EQ(state(), "voice IPV4 {10 to '', 20 to ''}");
}

TEST_F(ReentrancyTest, clearsStaleActionsWhenTheClassifierGoesMeanwhile) {
    const auto pmap = addPolicyMap("openconfig:voice:10");
    addClassMap("voice");
    start();
    const Once once(
        terms(),
        [&] {
            cmaps->cmapStatusDel("voice");
            addClassifierTermAction(root, "voice", Type::IPV4, "30", "lead");
        },
        [&] { return root->classifier("voice")->terms()->term("20") != nullptr; });
    pmap->classIs("openconfig:voice:20", classTo(1));
    pmap->versionIs(1);
    EXPECT_EQ(state(), "voice IPV4 {20 to gold, 30 to ''}");
}

TEST_F(ReentrancyTest, clearsStaleActionsInTheOrderOfTheTree) {
    addClassifierTermAction(root, "video", Type::IPV6, "10", "lead");
    addClassifierTermAction(root, "voice", Type::IPV4, "10", "lead");
    std::string then;
    const Once once(root->classifier("video")->terms()->publisher(), [&] { then = state(); });
    pmaps->pmapStatusIs(Qos::PolicyMapStatus::create(String("openconfig:voice:video")));
    start();
    EXPECT_EQ(then, "video IPV6 {10 to ''}; voice IPV4 {10 to lead}");
    EXPECT_EQ(state(), "video IPV6 {10 to ''}; voice IPV4 {10 to ''}");
}

TEST_F(ReentrancyTest, sweepsStaleConditionsWhenTermsGoMeanwhile) {
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

TEST_F(ReentrancyTest, survivesTheEndOfAListThatIsTakingItsStateBack) {
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

}  // namespace
}  // namespace QosOc
