#include <stdexcept>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/AclSubStateSm.h"
#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/AclMachineTest.h"

namespace QosOc {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class AclSubStateSmTest : public AclMachineTest {
protected:
    using Values = Orin::Vector<unsigned char>;

    Orin::Ptr<AclSubStateSm> start(const Rules& rules, const char* name = "openconfig:v4:10") {
        return aclSubStateSmFactory(
            rules, AclNameAndType::create(Orin::String(name), Acl::AclType::ipv4), state);
    }
    /// The text of the error that `act` throws.
    template <class Act>
    static std::string refusal(Act act) {
        try {
            act();
        } catch (const std::out_of_range& error) {
            return error.what();
        }
        return "nothing thrown";
    }
};

TEST_F(AclSubStateSmTest, writesTheConditionsOfItsRulesAtItsStart) {
    const TestSupport::TraceCapture capture;
    const auto sm = start(rulesFor({46}));
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 46}");
    const Lines lines = linesOf(capture, {{sm.get(), "rules"}}, "AclSubStateSm");
    EXPECT_THAT(lines, ElementsAre(rulesLine("266", "handleInitialized"),
                                   rulesLine("206", "handleAclRules")));
}

TEST_F(AclSubStateSmTest, writesAgainOnEachChangeOfTheSequence) {
    const auto rules = rulesFor({46});
    const auto sm = start(rules);
    TestSupport::StateRecorder heard(state);
    addRule(rules, 20, Acl::IpFilter{8, true});
    rules->ruleIdBySequenceDel(10);
    EXPECT_THAT(heard.take(), ElementsAre("v4/10 when ipv4 [46, 8]", "v4/10 when ipv4 8"));
}

TEST_F(AclSubStateSmTest, doesNotWatchTheRulesThemselves) {
    const auto rules = rulesFor({46});
    const auto sm = start(rules);
    const TestSupport::TraceCapture capture;
    rules->ipRuleByIdIs({110}, {{8, true}});
    rules->ip6RuleByIdIs({110}, {{8, 255}});
    EXPECT_THAT(capture.rawLines(), IsEmpty());
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 46}");
}

TEST_F(AclSubStateSmTest, emptiesTheConditionsBeforeItDies) {
    const auto sm = start(rulesFor({46}));
    const TestSupport::TraceCapture capture;
    sm->doPrepareToDie();
    EXPECT_EQ(written(), "v4 IPV4 {10 when -}");
    EXPECT_THAT(linesOf(capture, {{sm.get(), "rules"}}),
                ElementsAre(rulesLine("252", "doPrepareToDie"),
                            "deleteClassifierTermCondition, classifierName = v4, termId = 10"));
}

TEST_F(AclSubStateSmTest, deletesNothingBeforeItDiesWhenItsListStandsForNoTerm) {
    const auto sm = start(rulesFor({46}), "openconfig:v4:");
    const TestSupport::TraceCapture capture;
    sm->doPrepareToDie();
    EXPECT_EQ(written(), "");
    EXPECT_THAT(linesOf(capture, {{sm.get(), "rules"}}),
                ElementsAre(rulesLine("252", "doPrepareToDie")));
}

TEST_F(AclSubStateSmTest, leavesTheConditionsWhenItIsDropped) {
    const auto rules = rulesFor({46});
    start(rules);
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 46}");
    EXPECT_FALSE(rules->publisher()->hasSubscribers());
}

TEST_F(AclSubStateSmTest, ignoresAllChangesWithTheZombieFlag) {
    const auto rules = rulesFor({46});
    const auto sm = start(rules);
    sm->vexDoZombieReactors(true);
    addRule(rules, 20, Acl::IpFilter{8, true});
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 46}");
    sm->vexDoZombieReactors(false);
    addRule(rules, 30, Acl::IpFilter{9, true});
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 [46, 8, 9]}");
}

TEST_F(AclSubStateSmTest, fallsSilentAndHearsEachChangeOnceAgain) {
    const auto rules = rulesFor({46});
    const auto sm = start(rules);
    sm->hasNotificationActiveIs(false);
    addRule(rules, 20, Acl::IpFilter{8, true});
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 46}");
    sm->hasNotificationActiveIs(true);
    sm->hasNotificationActiveIs(true);
    const TestSupport::TraceCapture capture;
    addRule(rules, 30, Acl::IpFilter{9, true});
    EXPECT_EQ(linesOf(capture, {}, "AclSubStateSm").size(), 1u);
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 [46, 8, 9]}");
}

TEST_F(AclSubStateSmTest, holdsValuesForGenericAccess) {
    const auto sm = start(rulesFor({46, 8}));
    EXPECT_EQ(sm->dscpValueSet(), (Values{}));
    sm->dscpValueSetPush(1);
    sm->dscpValueSetPush(2);
    sm->dscpValueSetIs(0, 3);
    EXPECT_EQ(sm->dscpValueSet(), (Values{3, 2}));
    EXPECT_EQ(sm->dscpValueSetPop(), 2);
    EXPECT_EQ(sm->dscpValueSet(), (Values{3}));
    sm->dscpValueSetPopAll();
    EXPECT_EQ(sm->dscpValueSet(), (Values{}));
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 [46, 8]}");
}

TEST_F(AclSubStateSmTest, neitherReadsNorWritesThoseValuesForItsRules) {
    const auto rules = rulesFor({46});
    const auto sm = start(rules);
    sm->dscpValueSetPush(1);
    addRule(rules, 20, Acl::IpFilter{8, true});
    EXPECT_EQ(sm->dscpValueSet(), (Values{1}));
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 [46, 8]}");
}

TEST_F(AclSubStateSmTest, refusesAnIndexThatIsNotBelowTheSize) {
    const auto sm = start(rulesFor({46}));
    sm->dscpValueSetPush(1);
    const std::string text = refusal([&] { sm->dscpValueSetIs(5, 9); });
    EXPECT_THAT(text, HasSubstr("5"));
    EXPECT_THAT(text, HasSubstr("size 1"));
    EXPECT_NE(refusal([&] { sm->dscpValueSetIs(1, 9); }), "nothing thrown");
    EXPECT_EQ(sm->dscpValueSet(), (Values{1}));
}

TEST_F(AclSubStateSmTest, refusesToTakeAValueFromNone) {
    const auto sm = start(rulesFor({46}));
    EXPECT_THAT(refusal([&] { sm->dscpValueSetPop(); }), HasSubstr("empty"));
}

TEST_F(AclSubStateSmTest, leavesNothingBehindWhenAnAllocationFails) {
    const auto rules = rulesFor({46, 8, 9, 10, 11, 12, 13, 14, 15, 16});
    const auto isClean = [&] {
        EXPECT_EQ(live<AclSubStateSm>() + live<AclNameAndType>(), 0u);
        EXPECT_FALSE(rules->publisher()->hasSubscribers());
        state = State::ClassifiersDir::create();
    };
    EXPECT_GT(TestSupport::failEachAllocation([&] { start(rules); }, isClean), 5u);
}

TEST_F(AclSubStateSmTest, describesItself) {
    EXPECT_THAT(attributesOf(AclSubStateSm::kTypeRecord),
                ElementsAre("aclSubConfig 1 input watched Acl::AclSubConfig",
                            "aclNameAndType 2 input QosOc::AclNameAndType",
                            "classifierStateDir 3 input QosOc::State::ClassifiersDir",
                            "dscpValueSet 4 plain"));
    const auto sm = AclSubStateSm::kTypeRecord.construct(std::vector<Vex::Value>{
        Vex::NodeRef(rulesFor({46})),
        Vex::NodeRef(AclNameAndType::create(Orin::String("openconfig:v4:10"), Acl::AclType::ipv4)),
        Vex::NodeRef(state)});
    EXPECT_EQ(sm->typeData().fullName, "QosOc::AclSubStateSm");
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 46}");
    const auto* values = Vex::attributeNamed(sm->typeData(), "dscpValueSet");
    const Vex::Value list = Vex::ListValue{{std::uint64_t{7}, std::uint64_t{8}}};
    values->write(sm.get(), list);
    EXPECT_EQ(values->read(sm.get()), list);
}

}  // namespace
}  // namespace QosOc
