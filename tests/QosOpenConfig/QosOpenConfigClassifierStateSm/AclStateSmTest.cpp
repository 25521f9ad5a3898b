#include "QosOpenConfig/QosOpenConfigClassifierStateSm/AclStateSm.h"
#include "platform/Vex/Errors.h"
#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/AclMachineTest.h"

namespace QosOc {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class AclStateSmTest : public AclMachineTest {
protected:
    Orin::Ptr<AclStateSm> start(const List& list) { return aclStateSmFactory(list, state); }
    static AclSubStateSm* child(const AclStateSm& sm) {
        return childOf<AclSubStateSm>(sm, "aclSubStateSm");
    }
    static Orin::Ptr<const AclNameAndType> nameAndType(const AclStateSm& sm) {
        const auto value = Vex::attributeNamed(sm.typeData(), "aclNameAndType")->read(&sm);
        return Orin::Ptr<const AclNameAndType>::sharing(
            static_cast<const AclNameAndType*>(value.as<Vex::NodeRef>().get()));
    }
};

TEST_F(AclStateSmTest, makesTheTermOfAListWithoutRulesAndNoChild) {
    const auto sm = start(listOf("openconfig:v4:10", nullptr));
    EXPECT_EQ(written(), "v4 IPV4 {10}");
    EXPECT_EQ(child(*sm), nullptr);
}

TEST_F(AclStateSmTest, givesTheClassifierTheFamilyOfTheList) {
    const auto sm = start(listOf("openconfig:v6:10", nullptr, Acl::AclType::ipv6));
    EXPECT_EQ(written(), "v6 IPV6 {10}");
}

TEST_F(AclStateSmTest, tracesItsStart) {
    const TestSupport::TraceCapture capture;
    const auto sm = start(listOf("openconfig:v4:10", rulesFor({46})));
    EXPECT_THAT(
        linesOf(capture, {{sm.get(), "list"}, {child(*sm), "rules"}}),
        ElementsAre(listLine("304", "handleInitialized"),
                    "addClassifierTerm, classifierName = v4, classifierType = IPV4, termId = 10",
                    "addClassifier, classifierName = v4, classifierType = IPV4",
                    listLine("273", "handleAclSubConfig"), rulesLine("266", "handleInitialized"),
                    rulesLine("206", "handleAclRules"),
                    "addClassifierTermCondition, classifierName = v4, classifierType = IPV4, "
                    "termId = 10",
                    "addClassifierTerm, classifierName = v4, classifierType = IPV4, termId = 10",
                    "addClassifier, classifierName = v4, classifierType = IPV4"));
}

TEST_F(AclStateSmTest, writesNothingForAListThatStandsForNoTerm) {
    const auto list = listOf("plain", rulesFor({46}));
    const auto sm = start(list);
    EXPECT_NE(child(*sm), nullptr);
    const TestSupport::TraceCapture capture;
    list->aclSubConfigIs(nullptr);
    sm->doPrepareToDie();
    EXPECT_EQ(written(), "");
    EXPECT_EQ(linesOf(capture, {}).size(), 3u);
}

TEST_F(AclStateSmTest, keepsNameAndTypeOfItsStart) {
    const auto list = listOf("openconfig:v4:10", nullptr);
    const auto sm = start(list);
    const auto made = nameAndType(*sm);
    EXPECT_EQ(made->aclName(), "openconfig:v4:10");
    EXPECT_EQ(made->aclType(), Acl::AclType::ipv4);
    list->aclSubConfigIs(rulesFor({46}));
    EXPECT_EQ(nameAndType(*sm), made);
    EXPECT_EQ(childOf<const AclNameAndType>(*child(*sm), "aclNameAndType"), made.get());
}

TEST_F(AclStateSmTest, makesAChildWhenRulesCome) {
    const auto list = listOf("openconfig:v4:10", nullptr);
    const auto sm = start(list);
    list->aclSubConfigIs(rulesFor({46}));
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 46}");
}

TEST_F(AclStateSmTest, emptiesTheConditionsAndDropsTheChildWhenTheRulesGo) {
    const auto list = listOf("openconfig:v4:10", rulesFor({46}));
    const auto sm = start(list);
    const auto* gone = child(*sm);
    const TestSupport::TraceCapture capture;
    list->aclSubConfigIs(nullptr);
    EXPECT_EQ(written(), "v4 IPV4 {10 when -}");
    EXPECT_EQ(live<AclSubStateSm>(), 0u);
    EXPECT_THAT(
        linesOf(capture, {{sm.get(), "list"}, {gone, "rules"}}),
        ElementsAre(listLine("273", "handleAclSubConfig"), rulesLine("252", "doPrepareToDie"),
                    "deleteClassifierTermCondition, classifierName = v4, termId = 10"));
}

TEST_F(AclStateSmTest, keepsItsChildWhileTheRulesAreTheSame) {
    const auto list = listOf("openconfig:v4:10", rulesFor({46}));
    const auto sm = start(list);
    const auto* held = child(*sm);
    list->publishChange(Acl::AclConfig::kAclSubConfig.id, nullptr);
    EXPECT_EQ(child(*sm), held);
}

TEST_F(AclStateSmTest, silencesTheChildOfReplacedRulesWithoutCleanUp) {
    const auto old = rulesFor({46});
    const auto list = listOf("openconfig:v4:10", old);
    const auto sm = start(list);
    const auto kept = Orin::Ptr<AclSubStateSm>::sharing(child(*sm));
    TestSupport::StateRecorder heard(state);
    list->aclSubConfigIs(rulesFor({8}));
    EXPECT_THAT(heard.take(), ElementsAre("v4/10 when ipv4 8"));
    EXPECT_NE(child(*sm), kept.get());
    EXPECT_FALSE(kept->notificationActive());
    EXPECT_FALSE(old->publisher()->hasSubscribers());
    addRule(old, 20, Acl::IpFilter{1, true});
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 8}");
}

TEST_F(AclStateSmTest, keepsEarlierConditionsWhenTheNewRulesMatchNoDscp) {
    const auto list = listOf("openconfig:v4:10", rulesFor({46}));
    const auto sm = start(list);
    const auto others = Acl::AclSubConfig::create();
    addRule(others, 10, Acl::IpFilter{8, false});
    list->aclSubConfigIs(others);
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 46}");
}

TEST_F(AclStateSmTest, replacesAChildMadeFromAnyOtherInput) {
    const auto rules = rulesFor({46});
    const auto sm = start(listOf("openconfig:v4:10", rules));
    const Orin::Ptr<const AclNameAndType> same = nameAndType(*sm);
    const auto first = Orin::Ptr<AclSubStateSm>::sharing(child(*sm));
    EXPECT_EQ(sm->aclSubStateSmIs(rules, same, state), first);
    const Orin::Ptr<const AclNameAndType> other =
        AclNameAndType::create(Orin::String("openconfig:v4:20"), Acl::AclType::ipv4);
    const auto second = sm->aclSubStateSmIs(rules, other, state);
    EXPECT_NE(second, first);
    EXPECT_FALSE(first->notificationActive());
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 46, 20 when ipv4 46}");
    const auto third = sm->aclSubStateSmIs(rules, other, State::ClassifiersDir::create());
    EXPECT_NE(third, second);
    EXPECT_FALSE(second->notificationActive());
    EXPECT_EQ(child(*sm), third.get());
}

TEST_F(AclStateSmTest, refusesNullRules) {
    const auto sm = start(listOf("openconfig:v4:10", rulesFor({46})));
    const auto* held = child(*sm);
    try {
        sm->aclSubStateSmIs(nullptr, nameAndType(*sm), state);
        FAIL() << "nothing thrown";
    } catch (const Vex::MutatorArgNullPointerException& error) {
        EXPECT_THAT(error.what(), ::testing::HasSubstr("aclSubConfig"));
    }
    EXPECT_EQ(child(*sm), held);
}

TEST_F(AclStateSmTest, takesItsChildOutSilencedAndWithoutCleanUp) {
    const auto rules = rulesFor({46});
    const auto sm = start(listOf("openconfig:v4:10", rules));
    const auto removed = sm->aclSubStateSmDel();
    ASSERT_NE(removed, nullptr);
    EXPECT_FALSE(removed->notificationActive());
    EXPECT_EQ(child(*sm), nullptr);
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 46}");
    EXPECT_EQ(sm->aclSubStateSmDel(), nullptr);
}

TEST_F(AclStateSmTest, removesTheConditionsOfAListWithRulesInTwoSteps) {
    const auto sm = start(listOf("openconfig:v4:10", rulesFor({46})));
    const auto* gone = child(*sm);
    TestSupport::StateRecorder heard(state);
    const TestSupport::TraceCapture capture;
    sm->doPrepareToDie();
    EXPECT_THAT(heard.take(), ElementsAre("v4/10 when -", "v4/10"));
    EXPECT_THAT(linesOf(capture, {{sm.get(), "list"}, {gone, "rules"}}),
                ElementsAre(listLine("287", "doPrepareToDie"), rulesLine("252", "doPrepareToDie"),
                            "deleteClassifierTermCondition, classifierName = v4, termId = 10",
                            "deleteClassifierTermCondition, classifierName = v4, termId = 10"));
    EXPECT_EQ(child(*sm), nullptr);
}

TEST_F(AclStateSmTest, removesTheConditionsOfAListWithoutRulesInOneStep) {
    const auto sm = start(listOf("openconfig:v4:10", nullptr));
    writeCondition("v4", "10", 46);
    const TestSupport::TraceCapture capture;
    sm->doPrepareToDie();
    EXPECT_EQ(written(), "v4 IPV4 {10}");
    EXPECT_THAT(linesOf(capture, {{sm.get(), "list"}}),
                ElementsAre(listLine("287", "doPrepareToDie"),
                            "deleteClassifierTermCondition, classifierName = v4, termId = 10"));
}

TEST_F(AclStateSmTest, ignoresOtherAttributesAndEverythingWithTheZombieFlag) {
    const auto list = listOf("openconfig:v4:10", nullptr);
    const auto sm = start(list);
    const TestSupport::TraceCapture capture;
    list->publishChange(266, nullptr);
    sm->vexDoZombieReactors(true);
    list->aclSubConfigIs(rulesFor({46}));
    EXPECT_THAT(capture.rawLines(), IsEmpty());
    EXPECT_EQ(written(), "v4 IPV4 {10}");
}

TEST_F(AclStateSmTest, fallsSilentWithItsChildAndHearsEachChangeOnceAgain) {
    const auto rules = rulesFor({46});
    const auto list = listOf("openconfig:v4:10", rules);
    const auto sm = start(list);
    sm->hasNotificationActiveIs(false);
    EXPECT_FALSE(list->publisher()->hasSubscribers());
    EXPECT_FALSE(rules->publisher()->hasSubscribers());
    sm->hasNotificationActiveIs(true);
    addRule(rules, 20, Acl::IpFilter{8, true});
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 [46, 8]}");
}

TEST_F(AclStateSmTest, leavesNothingBehindWhenAnAllocationFails) {
    const auto rules = rulesFor({46});
    const auto list = listOf("openconfig:v4:10", rules);
    const auto isClean = [&] {
        EXPECT_EQ(live<AclStateSm>() + live<AclSubStateSm>() + live<AclNameAndType>(), 0u);
        EXPECT_FALSE(list->publisher()->hasSubscribers());
        EXPECT_FALSE(rules->publisher()->hasSubscribers());
        state = State::ClassifiersDir::create();
    };
    EXPECT_GT(TestSupport::failEachAllocation([&] { start(list); }, isClean), 5u);
}

TEST_F(AclStateSmTest, keepsItsChildWhenTheOneInItsPlaceCannotBeMade) {
    const auto rules = rulesFor({46});
    const auto sm = start(listOf("openconfig:v4:10", rules));
    const auto* held = child(*sm);
    const auto others = rulesFor({8});
    const auto isKept = [&] {
        EXPECT_EQ(child(*sm), held);
        EXPECT_TRUE(rules->publisher()->hasSubscribers());
        EXPECT_FALSE(others->publisher()->hasSubscribers());
    };
    EXPECT_GT(TestSupport::failEachAllocation(
                  [&] { sm->aclSubStateSmIs(others, nameAndType(*sm), state); }, isKept),
              0u);
    EXPECT_NE(child(*sm), held);
}

TEST_F(AclStateSmTest, describesItself) {
    EXPECT_THAT(attributesOf(AclStateSm::kTypeRecord),
                ElementsAre("aclConfig 1 input watched Acl::AclConfig",
                            "classifierStateDir 2 input QosOc::State::ClassifiersDir",
                            "aclNameAndType 3 plain QosOc::AclNameAndType",
                            "aclSubStateSm 4 child QosOc::AclSubStateSm"));
    const auto sm = AclStateSm::kTypeRecord.construct(std::vector<Vex::Value>{
        Vex::NodeRef(listOf("openconfig:v4:10", rulesFor({46}))), Vex::NodeRef(state)});
    EXPECT_EQ(sm->typeData().fullName, "QosOc::AclStateSm");
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 46}");
}

}  // namespace
}  // namespace QosOc
