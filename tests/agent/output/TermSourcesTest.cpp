#include "agent/output/TermSources.h"
#include "tests/agent/explain/ExplainTest.h"

namespace QosAgent {
namespace {

using Sentences = std::vector<std::string>;

class TermSourcesTest : public ExplainTest {
protected:
    /// Without the last sentence, which is about the class map.
    Sentences sources() {
        const Explanation explanation = explainer.explain({"edge", "voice"});
        Sentences sentences = sourcesOf(explanation.terms.at(0).evidence);
        sentences.pop_back();
        return sentences;
    }

    const std::string kDscp =
        "dscp 46(EF) comes from rule 10 at sequence 10 of the IPv4 access list " + kObj + ".";
    const std::string kGroup =
        "Target group voice comes from traffic class 0, which policy map openconfig:edge: "
        "(version 1) sets.";
};

TEST_F(TermSourcesTest, nameTheRuleAndThePolicyMap) {
    EXPECT_EQ(sources(), (Sentences{kDscp, kGroup}));
}

TEST_F(TermSourcesTest, sayOfARuleThatChangedUnpublishedThatItIsNotInForce) {
    update(kLists + kObj + "/aclSubConfig/ipRuleById/10/filter/dscpValue", "9");
    EXPECT_EQ(sources(),
              (Sentences{"Of the IPv4 access list " + kObj +
                             ", rule 10 at sequence 10 gives dscp 9, which is not in force.",
                         "dscp 46(EF) is in force, but no rule gives it now.", kGroup}));
    ASSERT_EQ(db.apply(R"({"touch":")" + kLists + kObj + R"(/aclSubConfig/ruleIdBySequence/10"})"),
              "");
    EXPECT_EQ(sources(), (Sentences{"dscp 9 comes from rule 10 at sequence 10 of the IPv4 access "
                                    "list " +
                                        kObj + ".",
                                    "dscp 46(EF) is configured, 9 is in force.", kGroup}));
}

TEST_F(TermSourcesTest, sayOfATrafficClassThatChangedUnpublishedThatItIsNotInForce) {
    update(kPmaps + "openconfig:edge:/classes/" + kObj + "/action/4", "1");
    EXPECT_EQ(sources(),
              (Sentences{kDscp,
                         "Target group gold has traffic class 1, which policy map openconfig:edge: "
                         "(version 1) sets, but it is not in force.",
                         "Target group voice is in force, but no policy map gives it now."}));
    pmapIsReadAgain();
    EXPECT_EQ(sources(),
              (Sentences{kDscp,
                         "Target group gold comes from traffic class 1, which policy map "
                         "openconfig:edge: (version 2) sets.",
                         "Target group voice is configured, gold is in force: policy map "
                         "openconfig:edge: has the classifier."}));
}

TEST_F(TermSourcesTest, sayOfAListThatTheOtherFamilyOverridesThatItIsNotInForce) {
    update("acl/config/cli/aclTypeConfig/ipv6/aclConfig/" + kObj + "/aclSubConfig",
           R"({"ruleIdBySequence":{"10":1},)"
           R"("ip6RuleById":{"1":{"filter":{"trafficClass":32,"trafficClassMask":252}}}})");
    EXPECT_EQ(sources(),
              (Sentences{"Of the IPv4 access list " + kObj +
                             ", rule 10 at sequence 10 gives dscp 46(EF), which is not in force.",
                         "dscp 8(CS1) comes from rule 1 at sequence 10 of the IPv6 access list " +
                             kObj + ".",
                         "dscp 46(EF) is configured, none is in force.", kGroup}));
}

TEST_F(TermSourcesTest, nameNoSourceForATermThatIsNotInTheState) {
    remove(kCmaps + kObj);
    const Explanation explanation = explainer.explain({"edge", "voice"});
    EXPECT_EQ(
        sourcesOf(explanation.terms.at(0).evidence),
        (Sentences{"Of the IPv4 access list " + kObj +
                       ", rule 10 at sequence 10 gives dscp 46(EF), which is not in force.",
                   "dscp 46(EF) is configured, none is in force.",
                   "Target group voice has traffic class 0, which policy map openconfig:edge: "
                   "(version 1) sets, but it is not in force.",
                   "Target group voice is configured, none is in force: policy map "
                   "openconfig:edge: has the classifier."}));
}

TEST_F(TermSourcesTest, nameTheConfigurationWhereNoPolicyMapUsesTheClassifier) {
    update(kConfigured + "web/terms/term/t/actions/targetGroup", R"("gold")");
    const Explanation explanation = explainer.explain({"web", "t"});
    EXPECT_EQ(sourcesOf(explanation.terms.at(0).evidence),
              Sentences{"Target group gold comes from the configuration."});
}

TEST_F(TermSourcesTest, nameTheConfigurationThatCameAfterAClassOfAnotherPolicyMap) {
    update(kPmaps + "openconfig:edge:",
           R"({"version":9,"classes":{"openconfig:web:t":{"action":{"4":0}}}})");
    update(kConfigured + "web/terms/term/t/actions/targetGroup", R"("gold")");
    const Explanation explanation = explainer.explain({"web", "t"});
    EXPECT_EQ(
        sourcesOf(explanation.terms.at(0).evidence),
        (Sentences{"Target group voice has traffic class 0, which policy map openconfig:edge: "
                   "(version 9) sets, but it is not in force.",
                   "Target group gold comes from the configuration."}));
}

TEST_F(TermSourcesTest, doNotTakeAGroupThatTheClassLeftForTheConfiguredOne) {
    remove(kPmaps + "openconfig:edge:/classes/" + kObj);
    EXPECT_EQ(
        sources(),
        (Sentences{kDscp, "Target group voice is in force, but no policy map gives it now."}));
}

TEST_F(TermSourcesTest, countTheRulesOfALongList) {
    std::string sequences;
    std::string rules;
    for (unsigned i = 1; i <= 64; ++i) {
        const std::string separator = i == 1 ? "" : ",";
        sequences += separator + '"' + std::to_string(i * 10) + R"(":)" + std::to_string(i);
        rules += separator + '"' + std::to_string(i) + R"(":{"filter":{"dscpValue":)" +
                 std::to_string(i - 1) + R"(,"dscpEnabled":true}})";
    }
    update(kLists + kObj + "/aclSubConfig",
           R"({"ruleIdBySequence":{)" + sequences + R"(},"ipRuleById":{)" + rules + "}}");
    EXPECT_EQ(sources(), (Sentences{"dscp 0-63 come from 64 rules at sequence 10 to 640 of the "
                                    "IPv4 access list " +
                                        kObj + ".",
                                    "dscp 46(EF) is configured, 0-63 are in force.", kGroup}));
}

}  // namespace
}  // namespace QosAgent
