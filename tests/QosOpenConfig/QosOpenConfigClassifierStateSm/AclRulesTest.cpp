#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/AclMachineTest.h"

namespace QosOc {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// How the rules of an access list become the conditions of its term.
class AclRulesTest : public AclMachineTest {
protected:
    void start(Acl::AclType type = Acl::AclType::ipv4, const char* name = "openconfig:v:10") {
        sm = aclSubStateSmFactory(rules, AclNameAndType::create(Orin::String(name), type), state);
    }

    Rules rules = Acl::AclSubConfig::create();
    Orin::Ptr<AclSubStateSm> sm;
};

TEST_F(AclRulesTest, takesValuesInTheOrderOfSequenceNumbersWithDuplicates) {
    addRule(rules, 30, Acl::IpFilter{46, true});
    addRule(rules, 10, Acl::IpFilter{10, true});
    addRule(rules, 20, Acl::IpFilter{46, true});
    start();
    EXPECT_EQ(written(), "v IPV4 {10 when ipv4 [10, 46, 46]}");
}

TEST_F(AclRulesTest, comparesSequenceNumbersUnsigned) {
    addRule(rules, 4294967195, Acl::IpFilter{1, true});
    addRule(rules, 2147483648, Acl::IpFilter{2, true});
    addRule(rules, 2147483647, Acl::IpFilter{3, true});
    start();
    EXPECT_EQ(written(), "v IPV4 {10 when ipv4 [3, 2, 1]}");
}

TEST_F(AclRulesTest, publishesOneValueAsADscpAndSeveralAsASet) {
    addRule(rules, 10, Acl::IpFilter{46, true});
    start();
    const auto* term = state->classifier("v")->terms()->term("10");
    EXPECT_EQ(term->conditions->ipv4, Config::TermConditionsIpConfig(46));
    addRule(rules, 20, Acl::IpFilter{46, true});
    Config::TermConditionsIpConfig set;
    set.dscpSetPush(46);
    set.dscpSetPush(46);
    EXPECT_EQ(term->conditions->ipv4, set);
    EXPECT_TRUE(term->conditions->ipv6.empty());
}

TEST_F(AclRulesTest, passesOverIpv4RulesThatDoNotMatchOnDscp) {
    addRule(rules, 10, Acl::IpFilter{8, false});
    addRule(rules, 20, Acl::IpFilter{46, true});
    start();
    EXPECT_EQ(written(), "v IPV4 {10 when ipv4 46}");
}

TEST_F(AclRulesTest, takesIpv4ValuesOfAnySize) {
    addRule(rules, 10, Acl::IpFilter{0, true});
    addRule(rules, 20, Acl::IpFilter{255, true});
    start();
    EXPECT_EQ(written(), "v IPV4 {10 when ipv4 [0, 255]}");
}

TEST_F(AclRulesTest, takesTheUpperSixBitsOfATrafficClassUnderAWholeMask) {
    addRule(rules, 10, Acl::Ip6Filter{184, 255});
    addRule(rules, 20, Acl::Ip6Filter{184, 252});
    addRule(rules, 30, Acl::Ip6Filter{185, 252});
    addRule(rules, 40, Acl::Ip6Filter{255, 253});
    addRule(rules, 50, Acl::Ip6Filter{0, 254});
    start(Acl::AclType::ipv6);
    EXPECT_EQ(written(), "v IPV6 {10 when ipv6 [46, 46, 46, 63, 0]}");
}

TEST_F(AclRulesTest, passesOverIpv6RulesUnderAPartialMask) {
    std::uint32_t sequence = 0;
    for (const int mask : {0, 3, 127, 128, 240, 248, 251})
        addRule(rules, ++sequence, Acl::Ip6Filter{184, static_cast<std::uint8_t>(mask)});
    addRule(rules, 20, Acl::Ip6Filter{184, 252});
    start(Acl::AclType::ipv6);
    EXPECT_EQ(written(), "v IPV6 {10 when ipv6 46}");
}

TEST_F(AclRulesTest, readsTheRulesOfTheListsFamilyOnly) {
    addRule(rules, 10, Acl::IpFilter{8, true});
    rules->ip6RuleByIdIs({110}, {{184, 255}});
    start(Acl::AclType::ipv6);
    EXPECT_EQ(written(), "v IPV6 {10 when ipv6 46}");
    state = State::ClassifiersDir::create();
    start(Acl::AclType::ipv4);
    EXPECT_EQ(written(), "v IPV4 {10 when ipv4 8}");
}

TEST_F(AclRulesTest, goesOnPastRulesThatAreMissing) {
    addRule(rules, 10, Acl::IpFilter{8, true});
    rules->ruleIdBySequenceIs(20, {999});
    addRule(rules, 30, Acl::IpFilter{46, true});
    start();
    EXPECT_EQ(written(), "v IPV4 {10 when ipv4 [8, 46]}");
    rules->ip6RuleByIdIs({110}, {{184, 255}});
    start(Acl::AclType::ipv6);
    EXPECT_EQ(written(), "v IPV4 {10 when ipv6 46}");
}

TEST_F(AclRulesTest, choosesTheSlotByTheListsTypeAndEmptiesTheOther) {
    writeCondition("v", "10", 9);
    addRule(rules, 10, Acl::Ip6Filter{184, 255});
    start(Acl::AclType::ipv6);
    EXPECT_EQ(written(), "v IPV4 {10 when ipv6 46}");
}

TEST_F(AclRulesTest, keepsTheTermsAction) {
    addClassifierTermAction(state, "v", Classifier::Type::IPV4, "10", "gold");
    addRule(rules, 10, Acl::IpFilter{46, true});
    start();
    EXPECT_EQ(written(), "v IPV4 {10 when ipv4 46 to gold}");
}

TEST_F(AclRulesTest, changesNothingWhenNoRuleMatchesOnDscp) {
    writeCondition("v", "10", 9);
    addRule(rules, 10, Acl::IpFilter{46, false});
    TestSupport::StateRecorder heard(state);
    const TestSupport::TraceCapture capture;
    start();
    EXPECT_THAT(heard.take(), IsEmpty());
    EXPECT_THAT(
        linesOf(capture, {{sm.get(), "rules"}}),
        ElementsAre(rulesLine("266", "handleInitialized"), rulesLine("206", "handleAclRules"),
                    "addClassifierTermCondition, classifierName = v, "
                    "classifierType = IPV4, termId = 10",
                    "addClassifierTermCondition, no rules are defined, skipping"));
}

TEST_F(AclRulesTest, createsNothingWhenNoRuleMatchesOnDscp) {
    addRule(rules, 10, Acl::IpFilter{46, false});
    start();
    EXPECT_EQ(written(), "");
}

TEST_F(AclRulesTest, emptiesTheConditionsWhenTheLastRuleGoes) {
    addRule(rules, 10, Acl::IpFilter{46, true});
    start();
    const TestSupport::TraceCapture capture;
    rules->ruleIdBySequenceDel(10);
    EXPECT_EQ(written(), "v IPV4 {10 when -}");
    EXPECT_THAT(
        linesOf(capture, {{sm.get(), "rules"}}),
        ElementsAre(rulesLine("206", "handleAclRules"),
                    rulesLine("215", "handleAclRules",
                              ", no rules present in the ACL: openconfig:v:10, deleting the "
                              "classifier term conditions"),
                    "deleteClassifierTermCondition, classifierName = v, termId = 10"));
}

TEST_F(AclRulesTest, leavesTheTreeAloneForAListThatStandsForNoTerm) {
    for (const char* name : {"plain", "openconfig::10", "openconfig:v:"}) {
        const TestSupport::TraceCapture capture;
        start(Acl::AclType::ipv4, name);
        EXPECT_THAT(
            linesOf(capture, {{sm.get(), "rules"}}),
            ElementsAre(rulesLine("266", "handleInitialized"), rulesLine("206", "handleAclRules")));
        addRule(rules, 10, Acl::IpFilter{46, true});
        EXPECT_EQ(written(), "");
    }
}

TEST_F(AclRulesTest, endsTheProcessAtTheFirstRuleOfAListOfAnotherType) {
    addRule(rules, 10, Acl::IpFilter{46, true});
    EXPECT_DEATH(start(Acl::AclType::mac),
                 "false: Unexpected ACL Type(.|\n)*"
                 "QosOpenConfig/QosOpenConfigClassifierStateSm:240: "
                 "void QosOc::AclSubStateSm::handleAclRules\\(\\): "
                 "Assertion `\"false\" == nullptr' failed");
}

TEST_F(AclRulesTest, onlyEmptiesTheConditionsOfAListOfAnotherTypeWithoutRules) {
    writeCondition("v", "10", 9);
    start(Acl::AclType::mac);
    EXPECT_EQ(written(), "v IPV4 {10 when -}");
}

TEST_F(AclRulesTest, passesOverTheTypeOfAListThatStandsForNoTerm) {
    addRule(rules, 10, Acl::IpFilter{46, true});
    start(Acl::AclType::mac, "plain");
    EXPECT_EQ(written(), "");
}

}  // namespace
}  // namespace QosOc
