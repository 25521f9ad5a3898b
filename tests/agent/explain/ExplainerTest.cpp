#include "agent/explain/Explainer.h"
#include "tests/agent/explain/ExplainTest.h"
#include "tests/support/Allocations.h"

namespace QosAgent {
namespace {

using ExplainerTest = ExplainTest;

TEST_F(ExplainerTest, writesAllThatATermWasMadeFrom) {
    classIs(R"({"4":1})");
    EXPECT_EQ(explained({"edge", "voice"}),
              R"({"classifier":"edge","type":"IPV4","terms":{"voice":{)"
              R"("state":{"id":"voice","stateId":"voice","conditions":{"ipv4":{"dscp":46},)"
              R"("ipv6":{}},"actions":{"targetGroup":"gold"}},)"
              R"("classMaps":[{"type":"mapQos","name":"openconfig:edge:voice",)"
              R"("match":{"matchIpAccessGroup":"openconfig:edge:voice"}}],)"
              R"("accessLists":[{"type":"ipv4","name":"openconfig:edge:voice",)"
              R"("rules":[{"sequence":10,"rule":"10","dscp":46}]}],)"
              R"("policyMaps":[{"name":"openconfig:edge:","version":2,"trafficClass":1,)"
              R"("targetGroup":"gold"}],)"
              R"("configured":{"targetGroup":"voice"},"findings":["policy-map-decides"]}}})");
}

TEST_F(ExplainerTest, saysWhyRulesDoNotCount) {
    update(kLists + kObj + "/aclSubConfig",
           R"({"ruleIdBySequence":{"5":18446744073709551615,"20":2},)"
           R"("ipRuleById":{"2":{"filter":{"dscpValue":8}}}})");
    update("acl/config/cli/aclTypeConfig/ipv6/aclConfig/" + kObj + "/aclSubConfig",
           R"({"ruleIdBySequence":{"1":1,"2":2},"ip6RuleById":{)"
           R"("1":{"filter":{"trafficClass":184,"trafficClassMask":248}},)"
           R"("2":{"filter":{"trafficClass":41,"trafficClassMask":255}}}})");
    const std::string text = explained({"edge", "voice"});
    const std::string lists =
        R"("accessLists":[{"type":"ipv4","name":"openconfig:edge:voice","rules":[)"
        R"({"sequence":5,"rule":"18446744073709551615","ignored":"missing"},)"
        R"({"sequence":10,"rule":"10","dscp":46},)"
        R"({"sequence":20,"rule":"2","ignored":"disabled"}]},)"
        R"({"type":"ipv6","name":"openconfig:edge:voice","rules":[)"
        R"({"sequence":1,"rule":"1","ignored":"mask"},{"sequence":2,"rule":"2","dscp":10}]}],)";
    EXPECT_NE(text.find(lists), std::string::npos) << text;
}

TEST_F(ExplainerTest, leavesOutWhatWouldBeEmpty) {
    update(kConfigured + "c/terms/term/t", "{}");
    ASSERT_EQ(db.replace(kLists + "openconfig:c:u", "null"), "");
    update(kCmaps + "openconfig:c:v", "{}");
    EXPECT_EQ(
        explained({"c", {}}),
        R"({"classifier":"c","terms":{)"
        R"("t":{"configured":{},"findings":["not-in-state","no-class-map","no-access-list"]},)"
        R"("u":{"accessLists":[{"type":"ipv4","name":"openconfig:c:u"}],)"
        R"("findings":["not-in-state","list-not-configured"]},)"
        R"("v":{"classMaps":[{"type":"mapQos","name":"openconfig:c:v"}],)"
        R"("findings":["not-in-state"]}},"findings":["not-in-state"]})");
    update(kPmaps + "openconfig:x:", R"({"classes":{"openconfig:c:w":{}}})");
    EXPECT_EQ(explained({"c", "w"}),
              R"({"classifier":"c","type":"IPV4","terms":{"w":{)"
              R"("state":{"id":"w","stateId":"w","actions":{"targetGroup":""}},)"
              R"("policyMaps":[{"name":"openconfig:x:","version":0}],)"
              R"("findings":["no-access-list","no-traffic-class"]}}})");
}

TEST_F(ExplainerTest, knowsNothingOfWhatNobodyKnows) {
    EXPECT_EQ(explained({"nobody", {}}), R"({"classifier":"nobody"})");
    EXPECT_EQ(explained({"nobody", "t"}), R"({"classifier":"nobody"})");
    EXPECT_EQ(explained({"edge", "nobody"}), R"({"classifier":"edge"})");
    EXPECT_EQ(explained({"class-default", {}}), R"({"classifier":"class-default"})");
}

TEST_F(ExplainerTest, findsNamesWithEscapes) {
    update(kCmaps + "openconfig:a%3Ab:%25/match/matchDscp", "\"\"");
    EXPECT_EQ(explained({"a:b", "%"}),
              R"({"classifier":"a:b","type":"IPV4","terms":{"%":{"state":{"id":"%","stateId":"%"},)"
              R"("classMaps":[{"type":"mapQos","name":"openconfig:a%3Ab:%25",)"
              R"("match":{"matchDscp":""}}],"findings":["no-access-list"]}}})");
}

TEST_F(ExplainerTest, seesWhatChangedSinceTheLastQuestion) {
    EXPECT_EQ(termFindings("new", "t"), "unknown");
    update(kPmaps + "openconfig:new:", R"({"classes":{"openconfig:new:t":{"action":{"4":0}}}})");
    EXPECT_EQ(termFindings("new", "t"), "no-access-list");
    remove(kPmaps + "openconfig:new:");
    EXPECT_EQ(termFindings("new", "t"), "left-behind no-access-list");
}

TEST_F(ExplainerTest, writesNoDifferenceWhereAllIsAsConfigured) {
    EXPECT_EQ(differences(), "{}");
    update(kLists + "openconfig:edge:extra/aclSubConfig", "{}");
    update(kCmaps + "web/match/matchDscp", "\"\"");
    EXPECT_EQ(differences(), "{}");
}

TEST_F(ExplainerTest, writesTheMembersThatDiffer) {
    update(kLists + kObj + "/aclSubConfig",
           R"({"ruleIdBySequence":{"5":5},"ipRuleById":{"5":{"filter":)"
           R"({"dscpValue":8,"dscpEnabled":true}}}})");
    EXPECT_EQ(differences(), R"({"edge":{"terms":{"voice":{"dscp":{"config":[46],"state":[8,46]},)"
                             R"("findings":["access-list-decides"]}}}})");
    classIs(R"({"4":7})");
    update(kLists + kObj + "/aclSubConfig/ipRuleById/5/filter/dscpEnabled", "false");
    ASSERT_EQ(db.touch(kLists + kObj + "/aclSubConfig/ruleIdBySequence/5"), "");
    EXPECT_EQ(differences(), R"({"edge":{"terms":{"voice":{"target-group":{"config":"voice"},)"
                             R"("findings":["no-forwarding-group","policy-map-decides"]}}}})");
}

TEST_F(ExplainerTest, writesTheConfiguredSideOfWhatIsNotInTheState) {
    remove(kCmaps + kObj);
    update(kConfigured + "bare/config/type", "\"IPV6\"");
    update(kConfigured + "blank", "{}");
    EXPECT_EQ(differences(),
              R"({"bare":{"type":{"config":"IPV6"},"findings":["not-in-state"]},)"
              R"("blank":{"findings":["not-in-state"]},)"
              R"("edge":{"terms":{"voice":{"dscp":{"config":[46]},"target-group":)"
              R"({"config":"voice"},)"
              R"("findings":["not-in-state","no-class-map","policy-map-decides"]}}}})");
}

TEST_F(ExplainerTest, writesTheStateSideOfWhatOnlyThePolicyMapSays) {
    remove(kConfigured + "edge/terms/term/voice/actions");
    EXPECT_EQ(differences(), R"({"edge":{"terms":{"voice":{"target-group":{"state":"voice"},)"
                             R"("findings":["policy-map-decides"]}}}})");
}

TEST_F(ExplainerTest, writesTypesThatDiffer) {
    update(kCmaps + "web/match/matchIpv6AccessGroup", "\"\"");
    update(kConfigured + "web/config/type", "\"IPV4\"");
    EXPECT_EQ(differences(), R"({"web":{"type":{"config":"IPV4","state":"IPV6"},)"
                             R"("findings":["first-type"]}})");
    ASSERT_EQ(db.replace(kConfigured + "web", "{}"), "");
    EXPECT_EQ(differences(), R"({"web":{"type":{"state":"IPV6"},"findings":["first-type"]}})");
}

/// A walk over the database would allocate more, or take longer than the test may.
TEST_F(ExplainerTest, costsWhatItFindsAndNotTheSizeOfTheDatabase) {
    std::size_t few = 0;
    for (const unsigned classifiers : {20U, 400U}) {
        ConfiguredState state;
        ASSERT_EQ(state.configure(documentOf(bigConfiguration(classifiers, 4, 2))), "");
        Explainer asked(state.database);
        const Question question{"classifier-10", "term-1"};
        asked.explain(question);
        const std::size_t before = TestSupport::allocations();
        asked.explain(question);
        const std::size_t count = TestSupport::allocations() - before;
        EXPECT_EQ(few == 0 ? count : few, count);
        few = count;
    }
}

}  // namespace
}  // namespace QosAgent
