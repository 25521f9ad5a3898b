#include "agent/explain/Finding.h"
#include "tests/agent/explain/ExplainTest.h"

namespace QosAgent {
namespace {

/// Each finding is reached by a change, and gone again by another.
class FindingTest : public ExplainTest {
protected:
    const std::string kRule = kLists + kObj + "/aclSubConfig/ipRuleById/10/filter";
    void rulesAreReadAgain() {
        ASSERT_EQ(db.touch(kLists + kObj + "/aclSubConfig/ruleIdBySequence/10"), "");
    }
};

TEST_F(FindingTest, isAbsentWhereAllIsAsConfigured) {
    EXPECT_EQ(termFindings(), "");
    EXPECT_EQ(classifierFindings(), "");
}

TEST_F(FindingTest, saysThatATermIsNotInState) {
    remove(kCmaps + kObj);
    EXPECT_EQ(termFindings(), "not-in-state no-class-map policy-map-decides");
    update(kCmaps + kObj + "/match/matchIpAccessGroup", "\"\"");
    // What its list and its policy map say is written when they change.
    EXPECT_EQ(termFindings(), "access-list-decides policy-map-decides");
    rulesAreReadAgain();
    pmapIsReadAgain();
    EXPECT_EQ(termFindings(), "");
}

TEST_F(FindingTest, saysThatAClassMapWithoutMatchMakesNoTerm) {
    update(kCmaps + "openconfig:new:t", "{}");
    EXPECT_EQ(termFindings("new", "t"), "not-in-state");
    EXPECT_EQ(classifierFindings("new"), "not-in-state");
    update(kCmaps + "openconfig:new:t/match/matchDscp", "\"\"");
    EXPECT_EQ(termFindings("new", "t"), "no-access-list");
    EXPECT_EQ(classifierFindings("new"), "");
}

TEST_F(FindingTest, saysThatAClassifierIsNotInState) {
    update(kConfigured + "bare", "{}");
    EXPECT_EQ(classifierFindings("bare"), "not-in-state");
    update(kPmaps + "openconfig:bare:", R"({"version":1})");
    EXPECT_EQ(classifierFindings("bare"), "");
}

TEST_F(FindingTest, saysThatAnOrdinaryClassMapWithoutMatchMakesNoClassifier) {
    update(kCmaps + "web", "{}");
    EXPECT_EQ(classifierFindings("web"), "not-in-state");
    update(kCmaps + "web/match/matchDscp", "\"\"");
    EXPECT_EQ(classifierFindings("web"), "");
}

TEST_F(FindingTest, saysWhatWasLeftBehind) {
    const std::string list = kLists + "openconfig:old:t";
    update(list + "/aclSubConfig", "{}");
    EXPECT_EQ(termFindings("old", "t"), "no-counting-rule");
    EXPECT_EQ(classifierFindings("old"), "");
    remove(list);
    EXPECT_EQ(termFindings("old", "t"), "left-behind no-access-list");
    EXPECT_EQ(classifierFindings("old"), "left-behind");
    update(kCmaps + "openconfig:old:t/match/matchDscp", "\"\"");
    EXPECT_EQ(termFindings("old", "t"), "no-access-list");
    EXPECT_EQ(classifierFindings("old"), "");
    remove(kCmaps + "openconfig:old:t");
    EXPECT_EQ(termFindings("old", "t"), "unknown");
    EXPECT_EQ(classifierFindings("old"), "left-behind");
}

TEST_F(FindingTest, countsNeitherOtherTypesNorPolicyMapsOfOtherNames) {
    remove(kLists + kObj);
    db.configure("{\"openconfig-qos:qos\":{}}");
    update(kLists + "openconfig:old:t/aclSubConfig", "{}");
    remove(kLists + "openconfig:old:t");
    update("qos/status/cmapTypeStatus/mapPbr/cmapStatus/openconfig:old:t", "{}");
    update("acl/config/cli/aclTypeConfig/mac/aclConfig/openconfig:old:t", "{}");
    update("qos/status/pmapTypeStatus/mapPbr/pmapStatus/openconfig:old:",
           R"({"classes":{"openconfig:old:t":{}}})");
    update(kPmaps + "ordinary", R"({"classes":{"openconfig:old:t":{}}})");
    EXPECT_EQ(explained({"old", "t"}),
              R"({"classifier":"old","type":"IPV4","terms":{"t":{"state":)"
              R"({"id":"t","stateId":"t"},"findings":["left-behind","no-access-list"]}},)"
              R"("findings":["left-behind"]})");
}

TEST_F(FindingTest, saysThatTheFirstTypeStays) {
    update(kCmaps + "web/match/matchIpv6AccessGroup", "\"\"");
    EXPECT_EQ(classifierFindings("web"), "");
    update(kConfigured + "web/config/type", "\"IPV4\"");
    EXPECT_EQ(classifierFindings("web"), "first-type");
    update(kConfigured + "web/config/type", "\"IPV6\"");
    EXPECT_EQ(classifierFindings("web"), "");
}

TEST_F(FindingTest, takesAClassifierWithoutTypeForIpv4) {
    update(kCmaps + "web/match/matchIpv6AccessGroup", "\"\"");
    update(kConfigured + "web", "{}");
    EXPECT_EQ(classifierFindings("web"), "first-type");
}

TEST_F(FindingTest, saysThatThereIsNoClassMap) {
    update(kConfigured + "c/terms/term/t/actions/targetGroup", "\"gold\"");
    EXPECT_EQ(termFindings("c", "t"), "no-class-map no-access-list");
    update(kCmaps + "openconfig:c:t/match/matchDscp", "\"\"");
    EXPECT_EQ(termFindings("c", "t"), "no-access-list");
}

TEST_F(FindingTest, saysThatThereIsNoAccessList) {
    remove(kLists + kObj);
    EXPECT_EQ(termFindings(), "no-access-list");
    update(kLists + kObj + "/aclSubConfig",
           R"({"ruleIdBySequence":{"5":1},"ipRuleById":{"1":{"filter":)"
           R"({"dscpValue":46,"dscpEnabled":true}}}})");
    EXPECT_EQ(termFindings(), "");
}

TEST_F(FindingTest, takesAListOfEitherFamilyForAnAccessList) {
    remove(kLists + kObj);
    update("acl/config/cli/aclTypeConfig/ipv6/aclConfig/" + kObj + "/aclSubConfig",
           R"({"ruleIdBySequence":{"5":1},"ip6RuleById":{"1":{"filter":)"
           R"({"trafficClass":184,"trafficClassMask":252}}}})");
    EXPECT_EQ(termFindings(), "access-list-decides");
}

TEST_F(FindingTest, saysThatAListIsNotConfigured) {
    for (const char* entry : {"null", "{}"}) {
        ASSERT_EQ(db.replace(kLists + kObj, entry), "");
        EXPECT_EQ(termFindings(), "list-not-configured") << entry;
        update(kLists + kObj + "/aclSubConfig",
               R"({"ruleIdBySequence":{"10":10},"ipRuleById":{"10":{"filter":)"
               R"({"dscpValue":46,"dscpEnabled":true}}}})");
        EXPECT_EQ(termFindings(), "") << entry;
    }
}

TEST_F(FindingTest, saysThatNoRuleCounts) {
    update(kRule + "/dscpEnabled", "false");
    EXPECT_EQ(termFindings(), "no-counting-rule");
    update(kRule + "/dscpEnabled", "true");
    EXPECT_EQ(termFindings(), "");
    remove(kLists + kObj + "/aclSubConfig/ruleIdBySequence/10");
    EXPECT_EQ(termFindings(), "no-counting-rule");
    update(kLists + kObj + "/aclSubConfig/ruleIdBySequence/10", "10");
    EXPECT_EQ(termFindings(), "");
}

TEST_F(FindingTest, saysThatTheAccessListDecides) {
    update(kRule + "/dscpValue", "40");
    EXPECT_EQ(termFindings(), "");
    rulesAreReadAgain();
    EXPECT_EQ(termFindings(), "access-list-decides");
    update(kConfigured + "edge/terms/term/voice/conditions/ipv4/dscp", "40");
    EXPECT_EQ(termFindings(), "");
}

TEST_F(FindingTest, asksForNoValuesWhereNoneAreConfigured) {
    remove(kConfigured + "edge/terms/term/voice/conditions");
    EXPECT_EQ(termFindings(), "");
}

TEST_F(FindingTest, comparesValuesInTheirOrder) {
    const std::string conditions = kConfigured + "edge/terms/term/voice/conditions/ipv4";
    update(kLists + kObj + "/aclSubConfig",
           R"({"ruleIdBySequence":{"20":20},"ipRuleById":{"20":{"filter":)"
           R"({"dscpValue":8,"dscpEnabled":true}}}})");
    EXPECT_EQ(termFindings(), "access-list-decides");
    // The single value comes first, and once.
    update(conditions, R"({"dscp":46,"dscpSet":[8,46]})");
    EXPECT_EQ(termFindings(), "");
    update(conditions, R"({"dscp":8})");
    EXPECT_EQ(termFindings(), "access-list-decides");
}

TEST_F(FindingTest, saysThatAClassSetsNoTrafficClass) {
    remove(kPmaps + "openconfig:edge:/classes/" + kObj + "/action/4");
    pmapIsReadAgain();
    EXPECT_EQ(termFindings(), "no-traffic-class policy-map-decides");
    classIs(R"({"4":0})");
    EXPECT_EQ(termFindings(), "");
}

TEST_F(FindingTest, saysThatNoForwardingGroupHasTheTrafficClass) {
    classIs(R"({"4":7})");
    EXPECT_EQ(termFindings(), "no-forwarding-group policy-map-decides");
    update("qos/input/config/cli/forwardingGroupNameToTcMap/tc/late", "7");
    EXPECT_EQ(termFindings(), "policy-map-decides");
    classIs(R"({"4":0})");
    EXPECT_EQ(termFindings(), "");
}

TEST_F(FindingTest, holdsWhereItHoldsForOneOfSeveralPolicyMaps) {
    classIs("{}", "openconfig:other:");
    EXPECT_EQ(termFindings(), "no-traffic-class policy-map-decides");
    classIs(R"({"4":9})", "openconfig::third");
    EXPECT_EQ(termFindings(), "no-traffic-class no-forwarding-group policy-map-decides");
    remove(kPmaps + "openconfig:other:");
    EXPECT_EQ(termFindings(), "no-forwarding-group policy-map-decides");
}

TEST_F(FindingTest, saysThatATermIsNotAClass) {
    remove(kPmaps + "openconfig:edge:/classes/" + kObj);
    pmapIsReadAgain();
    EXPECT_EQ(termFindings(), "not-a-class policy-map-decides");
    classIs(R"({"4":0})");
    EXPECT_EQ(termFindings(), "");
}

TEST_F(FindingTest, saysThatThePolicyMapDecides) {
    classIs(R"({"4":1})");
    EXPECT_EQ(termFindings(), "policy-map-decides");
    update(kConfigured + "edge/terms/term/voice/actions/targetGroup", "\"gold\"");
    EXPECT_EQ(termFindings(), "");
    remove(kConfigured + "edge/terms/term/voice/actions");
    EXPECT_EQ(termFindings(), "policy-map-decides");
    remove(kConfigured + "edge/terms/term/voice");
    EXPECT_EQ(termFindings(), "");
}

TEST_F(FindingTest, saysThatTheConfiguredGroupWasNotWritten) {
    remove(kPmaps + "openconfig:edge:");
    EXPECT_EQ(termFindings(), "");
    ASSERT_EQ(db.replace(kCmaps + kObj, R"({"match":{"matchDscp":""}})"), "");
    EXPECT_EQ(termFindings(), "access-list-decides group-not-written");
    rulesAreReadAgain();
    EXPECT_EQ(termFindings(), "group-not-written");
    ASSERT_EQ(db.touch(kConfigured + "edge/terms/term/voice"), "");
    EXPECT_EQ(termFindings(), "");
}

TEST_F(FindingTest, saysThatAnotherGroupStaysFromAClassThatIsGone) {
    remove(kPmaps + "openconfig:edge:");
    classIs(R"({"4":1})", "openconfig:other:");
    EXPECT_EQ(termFindings(), "policy-map-decides");
    remove(kPmaps + "openconfig:other:");
    EXPECT_EQ(termFindings(), "group-not-written");
}

TEST_F(FindingTest, asksForNoGroupWhereNoneIsConfigured) {
    remove(kPmaps + "openconfig:edge:");
    ASSERT_EQ(db.replace(kCmaps + kObj, R"({"match":{"matchDscp":""}})"), "");
    rulesAreReadAgain();
    remove(kConfigured + "edge/terms/term/voice/actions");
    EXPECT_EQ(termFindings(), "");
}

}  // namespace
}  // namespace QosAgent
