#include "agent/output/ExplanationText.h"
#include "tests/agent/explain/ExplainTest.h"

namespace QosAgent {
namespace {

class ExplanationTextTest : public ExplainTest {
protected:
    std::string text(const Question& question, const Terminal& terminal = {}) {
        return explanationText(explainer.explain(question), terminal);
    }
};

TEST_F(ExplanationTextTest, saysWhereTheStateComesFrom) {
    EXPECT_EQ(text({"edge", "voice"}),
              "classifier edge, IPV4\n"
              "term voice: dscp 46(EF), target group voice\n"
              "\n"
              "dscp 46(EF) comes from rule 10 at sequence 10 of the IPv4 access list\n"
              "  openconfig:edge:voice.\n"
              "Target group voice comes from traffic class 0, which policy map\n"
              "  openconfig:edge: (version 1) sets.\n"
              "Class map openconfig:edge:voice has matchIpAccessGroup openconfig:edge:voice.\n"
              "Nothing differs from what is configured.");
}

TEST_F(ExplanationTextTest, saysWhatIsConfiguredAndWhatIsInForce) {
    update(kLists + kObj + "/aclSubConfig",
           R"({"ruleIdBySequence":{"5":1,"20":2,"30":3,"40":4},"ipRuleById":{)"
           R"("1":{"filter":{"dscpValue":8,"dscpEnabled":true}},"3":{},"4":{}}})");
    classIs(R"({"4":1})");
    EXPECT_EQ(text({"edge", "voice"}),
              "classifier edge, IPV4\n"
              "term voice: dscp 8(CS1),46(EF), target group gold\n"
              "\n"
              "dscp 8(CS1),46(EF) come from the rules at sequence 5,10 of the IPv4 access list\n"
              "  openconfig:edge:voice.\n"
              "Of the IPv4 access list openconfig:edge:voice, the rules at sequence 30,40 give\n"
              "  no DSCP: DSCP is not enabled.\n"
              "Of the IPv4 access list openconfig:edge:voice, rule 2 at sequence 20 gives no\n"
              "  DSCP: no such rule.\n"
              "dscp 46(EF) is configured, 8(CS1),46(EF) are in force.\n"
              "Target group gold comes from traffic class 1, which policy map openconfig:edge:\n"
              "  (version 2) sets.\n"
              "Target group voice is configured, gold is in force: policy map openconfig:edge:\n"
              "  has the classifier.\n"
              "Class map openconfig:edge:voice has matchIpAccessGroup openconfig:edge:voice.\n"
              "\n"
              "access-list-decides: The rules of the access list decide the DSCP values, and\n"
              "  they differ from the configured ones. Change the rules of the access list, or\n"
              "  configure the values that they give.\n"
              "policy-map-decides: A policy map decides the target group, not the\n"
              "  configuration. Set in the policy map the traffic class of the configured\n"
              "  group and raise its version, or detach the classifier from the interfaces.");
}

TEST_F(ExplanationTextTest, escapesWhatNobodySees) {
    EXPECT_EQ(text({"edge", "\u202eb\u009b"}),
              "classifier edge, IPV4\n"
              "Nobody knows a term \\u202eb\\u009b of this classifier.");
}

TEST_F(ExplanationTextTest, saysOfAClassifierWhatItsTermsAre) {
    update(kConfigured + "edge/terms/term/late", "{}");
    update(kLists + "openconfig:edge:web/aclSubConfig", "{}");
    EXPECT_EQ(text({"edge", {}}),
              "classifier edge, IPV4\n"
              "term late: not in the state\n"
              "  not-in-state: It is not in the state.\n"
              "  no-class-map: No class map was made from the term.\n"
              "  no-access-list: No access list was made from the term, so none gives it DSCP\n"
              "    values.\n"
              "  not-a-class: A policy map uses the classifier, but none has a class for the\n"
              "    term.\n"
              "term voice: dscp 46(EF), target group voice\n"
              "term web: no dscp, no target group\n"
              "  no-counting-rule: No rule of the access list gives a DSCP value.\n"
              "  not-a-class: A policy map uses the classifier, but none has a class for the\n"
              "    term.");
}

TEST_F(ExplanationTextTest, saysWhatWasLeftBehind) {
    update(kPmaps + "openconfig:old:", R"({"classes":{"openconfig:old:t":{"action":{"4":1}}}})");
    remove(kPmaps + "openconfig:old:");
    EXPECT_EQ(text({"old", "t"}),
              "classifier old, IPV4\n"
              "left-behind: It is in the state, but nothing stands for it any more. Create its\n"
              "  class map and delete it again: only the end of a class map removes a term or\n"
              "  a classifier from the state.\n"
              "term t: no dscp, target group gold\n"
              "\n"
              "Target group gold was left in the state by a policy map that is gone.\n"
              "\n"
              "left-behind: It is in the state, but nothing stands for it any more. Create its\n"
              "  class map and delete it again: only the end of a class map removes a term or\n"
              "  a classifier from the state.\n"
              "no-access-list: No access list was made from the term, so none gives it DSCP\n"
              "  values. Configure a DSCP value of the classifier's family, or create the\n"
              "  access list. A term that is to match all traffic needs none.");
}

TEST_F(ExplanationTextTest, saysWhatNobodyKnows) {
    EXPECT_EQ(text({"a\nb", {}}), "Nobody knows a classifier a\\nb.");
    EXPECT_EQ(text({"nobody", "t"}), "Nobody knows a classifier nobody.");
    EXPECT_EQ(text({"edge", "t"}),
              "classifier edge, IPV4\nNobody knows a term t of this classifier.");
}

TEST_F(ExplanationTextTest, isFoldedToANarrowTerminalAndColoured) {
    remove(kLists + kObj);
    EXPECT_EQ(text({"edge", {}}, {40, true, true}),
              "\033[1mclassifier edge, IPV4\033[0m\n"
              "\033[1mterm voice:\033[0m no dscp, target group voice\n"
              "  \033[1;35mno-access-list:\033[0m No access list was\n"
              "    made from the term, so none gives\n"
              "    it DSCP values.");
}

TEST_F(ExplanationTextTest, isNoWiderThanAScreenOnAWideTerminal) {
    EXPECT_EQ(text({"edge", "voice"}, {200, false, false}), text({"edge", "voice"}));
}

}  // namespace
}  // namespace QosAgent
