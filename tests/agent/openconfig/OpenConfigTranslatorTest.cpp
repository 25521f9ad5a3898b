#include <gtest/gtest.h>

#include <algorithm>

#include "agent/openconfig/OpenConfigTranslator.h"
#include "tests/agent/support/Configurations.h"
#include "tests/agent/support/TextDatabase.h"

namespace QosAgent {
namespace {

const std::string kGroups = "qos/input/config/cli/forwardingGroupNameToTcMap";
const std::string kTcs = kGroups + "/tc/";
const std::string kCmaps = "qos/status/cmapTypeStatus/mapQos/cmapStatus/";
const std::string kPmaps = "qos/status/pmapTypeStatus/mapQos/pmapStatus/";
const std::string kAcls4 = "acl/config/cli/aclTypeConfig/ipv4/aclConfig/";
const std::string kAcls6 = "acl/config/cli/aclTypeConfig/ipv6/aclConfig/";
const std::string kClassifiers = "qos/openconfig/config/classifiers/classifier/";

/// What the types keep when all that documents made is gone.
const char* const kNothingLeft =
    R"({"qos/status":{"pmapTypeStatus":{"mapQos":{}},"cmapTypeStatus":{"mapQos":{}}},)"
    R"("qos/input/config/cli":{},)"
    R"("acl/config/cli":{"aclTypeConfig":{"ipv4":{},"ipv6":{}}},)"
    R"("qos/openconfig/config/classifiers":{},"qos/openconfig/state/classifiers":{}})";

/// Two groups, an IPv4 classifier of three terms and an IPv6 classifier of one, attached as a pair.
ConfigurationPlan twoFamilies() {
    return {{"gold", "lead"},
            {{"four", "IPV4", {{"v", {46}, "gold"}, {"d", {10, 12}, "lead"}, {"rest", {}}}},
             {"six", "IPV6", {{"v", {46, 8}, "gold"}}}},
            {{"four", "six"}}};
}

class OpenConfigTranslatorTest : public ::testing::Test {
protected:
    OpenConfigTranslatorTest() : db(std::make_unique<TextDatabase>()) {
        recorder = std::make_unique<ChangeRecorder>(db->database);
    }

    /// Configures and returns what was published.
    Changes configureText(const std::string& document) {
        EXPECT_EQ(db->apply(R"({"openconfig":)" + document + "}"), "");
        return recorder->take();
    }
    Changes configure(const ConfigurationPlan& plan) { return configureText(documentOf(plan)); }
    void given(const ConfigurationPlan& plan) { configure(plan); }
    void givenLine(const std::string& path, const std::string& value) {
        ASSERT_EQ(db->update(path, value), "");
        recorder->take();
    }

    std::unique_ptr<TextDatabase> db;
    std::unique_ptr<ChangeRecorder> recorder;
};

TEST_F(OpenConfigTranslatorTest, makesAllThatADocumentSays) {
    given(twoFamilies());
    EXPECT_EQ(
        db->at("qos/status"),
        R"({"pmapTypeStatus":{"mapQos":{"pmapStatus":{"openconfig:four:six":{)"
        R"("pmapName":"openconfig:four:six","version":1,"classes":{)"
        R"("openconfig:four:d":{"action":{"4":1}},"openconfig:four:rest":{},)"
        R"("openconfig:four:v":{"action":{"4":0}},"openconfig:six:v":{"action":{"4":0}}}}}}},)"
        R"("cmapTypeStatus":{"mapQos":{"cmapStatus":{)"
        R"("openconfig:four:d":{"cmapName":"openconfig:four:d","match":{"matchIpAccessGroup":"openconfig:four:d"}},)"
        R"("openconfig:four:rest":{"cmapName":"openconfig:four:rest","match":{"matchIpAccessGroup":"openconfig:four:rest"}},)"
        R"("openconfig:four:v":{"cmapName":"openconfig:four:v","match":{"matchIpAccessGroup":"openconfig:four:v"}},)"
        R"("openconfig:six:v":{"cmapName":"openconfig:six:v","match":{"matchIpv6AccessGroup":"openconfig:six:v"}}}}}})");
    EXPECT_EQ(db->at("qos/input/config/cli"),
              R"({"forwardingGroupNameToTcMap":{"tc":{"gold":0,"lead":1}}})");
    EXPECT_EQ(
        db->at("acl/config/cli"),
        R"({"aclTypeConfig":{"ipv4":{"aclConfig":{)"
        R"("openconfig:four:d":{"aclName":"openconfig:four:d","aclType":"ipv4","aclSubConfig":{)"
        R"("ruleIdBySequence":{"10":10,"20":20},"ipRuleById":{)"
        R"("10":{"filter":{"dscpValue":10,"dscpEnabled":true}},)"
        R"("20":{"filter":{"dscpValue":12,"dscpEnabled":true}}}}},)"
        R"("openconfig:four:v":{"aclName":"openconfig:four:v","aclType":"ipv4","aclSubConfig":{)"
        R"("ruleIdBySequence":{"10":10},"ipRuleById":{)"
        R"("10":{"filter":{"dscpValue":46,"dscpEnabled":true}}}}}}},)"
        R"("ipv6":{"aclConfig":{)"
        R"("openconfig:six:v":{"aclName":"openconfig:six:v","aclType":"ipv6","aclSubConfig":{)"
        R"("ruleIdBySequence":{"10":10,"20":20},"ip6RuleById":{)"
        R"("10":{"filter":{"trafficClass":184,"trafficClassMask":252}},)"
        R"("20":{"filter":{"trafficClass":32,"trafficClassMask":252}}}}}}}}})");
    EXPECT_EQ(
        db->at("qos/openconfig/config/classifiers"),
        R"({"classifier":{"four":{"config":{"name":"four","type":"IPV4"},"terms":{"term":{)"
        R"("d":{"id":"d","stateId":"d","conditions":{"ipv4":{"dscpSet":[10,12]},"ipv6":{}},"actions":{"targetGroup":"lead"}},)"
        R"("rest":{"id":"rest","stateId":"rest"},)"
        R"("v":{"id":"v","stateId":"v","conditions":{"ipv4":{"dscp":46},"ipv6":{}},"actions":{"targetGroup":"gold"}}}}},)"
        R"("six":{"config":{"name":"six","type":"IPV6"},"terms":{"term":{)"
        R"("v":{"id":"v","stateId":"v","conditions":{"ipv4":{},"ipv6":{"dscpSet":[46,8]}},"actions":{"targetGroup":"gold"}}}}}}})");
}

TEST_F(OpenConfigTranslatorTest, attachesWhatIsNewWholeAndInOrder) {
    Changes order = configure(twoFamilies());
    for (std::string& change : order)
        change = change.substr(0, change.find(' '));
    EXPECT_EQ(
        order,
        (Changes{kGroups, kTcs + "gold", kTcs + "lead", "qos/status/cmapTypeStatus/mapQos",
                 "acl/config/cli/aclTypeConfig/ipv4", "acl/config/cli/aclTypeConfig/ipv6",
                 kClassifiers + "four", kClassifiers + "six", "qos/status/pmapTypeStatus/mapQos"}));
}

TEST_F(OpenConfigTranslatorTest, makesNoListsAndNoPolicyMapsThatNothingAsksFor) {
    given({{}, {{"bare", "", {{"all", {}}}}, {"none", "IPV6", {}}}, {}});
    EXPECT_EQ(db->at("acl/config/cli"), "{}");
    EXPECT_EQ(db->at("qos/input/config/cli"), "{}");
    EXPECT_EQ(db->at("qos/openconfig/config/classifiers"),
              R"({"classifier":{"bare":{"config":{"name":"bare"},"terms":{"term":{)"
              R"("all":{"id":"all","stateId":"all"}}}},)"
              R"("none":{"config":{"name":"none","type":"IPV6"}}}})");
    EXPECT_EQ(db->at("qos/status").find("pmapTypeStatus"), std::string::npos);
}

TEST_F(OpenConfigTranslatorTest, namesObjectsWithEscapes) {
    given({{}, {{"a:b", "", {{"c%", {1}}}}}, {{"a:b", ""}}});
    EXPECT_EQ(db->at("qos/status"),
              R"({"pmapTypeStatus":{"mapQos":{"pmapStatus":{"openconfig:a%3Ab:":{)"
              R"("pmapName":"openconfig:a%3Ab:","version":1,)"
              R"("classes":{"openconfig:a%3Ab:c%25":{}}}}}},)"
              R"("cmapTypeStatus":{"mapQos":{"cmapStatus":{"openconfig:a%3Ab:c%25":{)"
              R"("cmapName":"openconfig:a%3Ab:c%25",)"
              R"("match":{"matchIpAccessGroup":"openconfig:a%3Ab:c%25"}}}}}})");
}

TEST_F(OpenConfigTranslatorTest, publishesNothingForADocumentThatSaysTheSame) {
    given(twoFamilies());
    EXPECT_EQ(configure(twoFamilies()), Changes{});
    ConfigurationPlan turned = twoFamilies();
    std::reverse(turned.groups.begin(), turned.groups.end());
    std::reverse(turned.classifiers.begin(), turned.classifiers.end());
    std::reverse(turned.classifiers[1].terms.begin(), turned.classifiers[1].terms.end());
    EXPECT_EQ(configure(turned), Changes{});
}

TEST_F(OpenConfigTranslatorTest, removesEverythingItMadeForTheEmptyDocument) {
    given(twoFamilies());
    EXPECT_EQ(configureText("{}"),
              (Changes{kAcls4 + "openconfig:four:v gone", kAcls4 + "openconfig:four:d gone",
                       kAcls6 + "openconfig:six:v gone", kClassifiers + "four gone",
                       kClassifiers + "six gone", kPmaps + "openconfig:four:six gone",
                       kCmaps + "openconfig:four:v gone", kCmaps + "openconfig:four:d gone",
                       kCmaps + "openconfig:four:rest gone", kCmaps + "openconfig:six:v gone",
                       kTcs + "gold gone", kTcs + "lead gone", kGroups + " = null"}));
    EXPECT_EQ(db->all(), kNothingLeft);
}

TEST_F(OpenConfigTranslatorTest, changesNothingWhenADocumentIsRefused) {
    given(twoFamilies());
    const std::string before = db->all();
    const std::string wrong = R"({"openconfig":{"openconfig-qos:qos":{"forwarding-groups":{)"
                              R"("forwarding-group":[{"name":"x","config":{"name":"y"}}]}}}})";
    EXPECT_NE(db->apply(wrong), "");
    EXPECT_EQ(recorder->take(), Changes{});
    EXPECT_EQ(db->all(), before);
    EXPECT_EQ(configure(twoFamilies()), Changes{});
}

TEST_F(OpenConfigTranslatorTest, tellsAChangedDscpAsTheChangeOfItsSequenceNumber) {
    given(twoFamilies());
    ConfigurationPlan later = twoFamilies();
    later.classifiers[0].terms[1].dscp = {10, 13};
    const std::string rules = kAcls4 + "openconfig:four:d/aclSubConfig";
    EXPECT_EQ(
        configure(later),
        (Changes{
            rules + R"(/ipRuleById/20 = {"filter":{"dscpValue":13,"dscpEnabled":true}})",
            rules + "/ruleIdBySequence/20 = 20",
            kClassifiers +
                R"(four/terms/term/d = {"id":"d","stateId":"d","conditions":{)"
                R"("ipv4":{"dscpSet":[10,13]},"ipv6":{}},"actions":{"targetGroup":"lead"}})"}));
}

TEST_F(OpenConfigTranslatorTest, addsRulesAtTheEnd) {
    given(twoFamilies());
    ConfigurationPlan later = twoFamilies();
    later.classifiers[1].terms[0].dscp = {46, 8, 1, 0};
    Changes changes = configure(later);
    ASSERT_EQ(changes.size(), 5u);
    changes.pop_back();
    const std::string rules = kAcls6 + "openconfig:six:v/aclSubConfig";
    EXPECT_EQ(
        changes,
        (Changes{
            rules + R"(/ip6RuleById/30 = {"filter":{"trafficClass":4,"trafficClassMask":252}})",
            rules + R"(/ip6RuleById/40 = {"filter":{"trafficClass":0,"trafficClassMask":252}})",
            rules + "/ruleIdBySequence/30 = 30", rules + "/ruleIdBySequence/40 = 40"}));
}

TEST_F(OpenConfigTranslatorTest, removesRulesOfValuesThatGo) {
    given({{}, {{"C", "", {{"T", {1, 2, 3}}}}}, {}});
    Changes changes = configure({{}, {{"C", "", {{"T", {3}}}}}, {}});
    ASSERT_EQ(changes.size(), 7u);
    changes.pop_back();
    const std::string rules = kAcls4 + "openconfig:C:T/aclSubConfig";
    EXPECT_EQ(changes,
              (Changes{rules + R"(/ipRuleById/10 = {"filter":{"dscpValue":3,"dscpEnabled":true}})",
                       rules + "/ipRuleById/20 gone", rules + "/ipRuleById/30 gone",
                       rules + "/ruleIdBySequence/10 = 10", rules + "/ruleIdBySequence/20 gone",
                       rules + "/ruleIdBySequence/30 gone"}));
}

TEST_F(OpenConfigTranslatorTest, removesTheAccessListOfATermThatMatchesNoDscpAnyMore) {
    given({{}, {{"C", "", {{"T", {1}}}}}, {}});
    EXPECT_EQ(configure({{}, {{"C", "", {{"T", {}}}}}, {}}),
              (Changes{kAcls4 + "openconfig:C:T gone",
                       kClassifiers + R"(C/terms/term/T = {"id":"T","stateId":"T"})"}));
}

TEST_F(OpenConfigTranslatorTest, writesADscpAsASetOfOneWithoutTouchingTheAccessList) {
    given({{}, {{"C", "", {{"T", {1}}}}}, {}});
    EXPECT_EQ(configure({{}, {{"C", "", {{"T", {1}, "", true}}}}, {}}),
              Changes{kClassifiers + R"(C/terms/term/T = {"id":"T","stateId":"T","conditions":{)"
                                     R"("ipv4":{"dscpSet":[1]},"ipv6":{}}})"});
}

TEST_F(OpenConfigTranslatorTest, raisesTheVersionWhenATargetGroupChanges) {
    given(twoFamilies());
    ConfigurationPlan later = twoFamilies();
    later.classifiers[0].terms[2].group = "lead";
    const std::string pmap = kPmaps + "openconfig:four:six";
    EXPECT_EQ(configure(later),
              (Changes{kClassifiers + R"(four/terms/term/rest = {"id":"rest","stateId":"rest",)"
                                      R"("actions":{"targetGroup":"lead"}})",
                       pmap + R"(/classes/openconfig:four:rest = {"action":{"4":1}})",
                       pmap + "/version = 2"}));
    EXPECT_EQ(configure(twoFamilies()).back(), pmap + "/version = 3");
}

TEST_F(OpenConfigTranslatorTest, removesATermFromAllThatHasIt) {
    given(twoFamilies());
    ConfigurationPlan later = twoFamilies();
    later.classifiers[0].terms.erase(later.classifiers[0].terms.begin());
    const std::string pmap = kPmaps + "openconfig:four:six";
    EXPECT_EQ(configure(later),
              (Changes{kAcls4 + "openconfig:four:v gone", kClassifiers + "four/terms/term/v gone",
                       pmap + "/classes/openconfig:four:v gone", pmap + "/version = 2",
                       kCmaps + "openconfig:four:v gone"}));
}

TEST_F(OpenConfigTranslatorTest, makesARenamedTermAnew) {
    given({{}, {{"C", "", {{"T", {1}}}}}, {{"C", ""}}});
    EXPECT_EQ(
        configure({{}, {{"C", "", {{"U", {1}}}}}, {{"C", ""}}}),
        (Changes{kAcls4 + "openconfig:C:T gone",
                 kCmaps + R"(openconfig:C:U = {"cmapName":"openconfig:C:U",)"
                          R"("match":{"matchIpAccessGroup":"openconfig:C:U"}})",
                 kAcls4 + R"(openconfig:C:U = {"aclName":"openconfig:C:U","aclType":"ipv4",)"
                          R"("aclSubConfig":{"ruleIdBySequence":{"10":10},"ipRuleById":{"10":)"
                          R"({"filter":{"dscpValue":1,"dscpEnabled":true}}}}})",
                 kClassifiers + R"(C/terms/term/U = {"id":"U","stateId":"U","conditions":{)"
                                R"("ipv4":{"dscp":1},"ipv6":{}}})",
                 kClassifiers + "C/terms/term/T gone",
                 kPmaps + "openconfig:C:/classes/openconfig:C:U = {}",
                 kPmaps + "openconfig:C:/classes/openconfig:C:T gone",
                 kPmaps + "openconfig:C:/version = 2", kCmaps + "openconfig:C:T gone"}));
}

TEST_F(OpenConfigTranslatorTest, movesATermToAnotherFamilyWithItsClassifier) {
    given({{}, {{"C", "IPV4", {{"T", {1}}}}}, {{"C", ""}}});
    const Changes changes = configure({{}, {{"C", "IPV6", {{"T", {1}}}}}, {{"", "C"}}});
    const std::string cmap = kCmaps + "openconfig:C:T/match/";
    EXPECT_EQ(
        changes,
        (Changes{kAcls4 + "openconfig:C:T gone",
                 cmap + R"(matchIpv6AccessGroup = "openconfig:C:T")",
                 cmap + "matchIpAccessGroup gone",
                 R"(acl/config/cli/aclTypeConfig/ipv6 = {"aclConfig":{"openconfig:C:T":{)"
                 R"("aclName":"openconfig:C:T","aclType":"ipv6","aclSubConfig":{)"
                 R"("ruleIdBySequence":{"10":10},"ip6RuleById":{"10":)"
                 R"({"filter":{"trafficClass":4,"trafficClassMask":252}}}}}}})",
                 kClassifiers + R"(C/config = {"name":"C","type":"IPV6"})",
                 kClassifiers + R"(C/terms/term/T = {"id":"T","stateId":"T","conditions":{)"
                                R"("ipv4":{},"ipv6":{"dscp":1}}})",
                 kClassifiers + R"(C/terms = {"term":{"T":{"id":"T","stateId":"T","conditions":{)"
                                R"("ipv4":{},"ipv6":{"dscp":1}}}}})",
                 kPmaps + R"(openconfig::C = {"pmapName":"openconfig::C","version":1,"classes":{)"
                          R"("openconfig:C:T":{}}})",
                 kPmaps + "openconfig:C: gone"}));
}

TEST_F(OpenConfigTranslatorTest, setsATypeThatSaysWhatNoTypeMeantWithoutMore) {
    given({{}, {{"C", "", {{"T", {1}}}}}, {{"C", ""}}});
    EXPECT_EQ(configure({{}, {{"C", "IPV4", {{"T", {1}}}}}, {{"C", ""}}}),
              Changes{kClassifiers + R"(C/config = {"name":"C","type":"IPV4"})"});
}

TEST_F(OpenConfigTranslatorTest, unsetsTheTermsOfAClassifierThatHasNoneLeft) {
    given({{}, {{"C", "", {{"T", {}}}}}, {}});
    EXPECT_EQ(configure({{}, {{"C", "", {}}}, {}}),
              (Changes{kClassifiers + "C/terms/term/T gone", kClassifiers + "C/terms = null",
                       kCmaps + "openconfig:C:T gone"}));
    EXPECT_EQ(configure({{}, {{"C", "", {{"T", {}}}}}, {}}).back(),
              kClassifiers + R"(C/terms = {"term":{"T":{"id":"T","stateId":"T"}}})");
}

TEST_F(OpenConfigTranslatorTest, detachesAClassifierFromItsLastInterfaceOnly) {
    ConfigurationPlan plan = twoFamilies();
    plan.interfaces = {{"four", "six"}, {"four", "six"}, {"four", ""}};
    given(plan);
    plan.interfaces.erase(plan.interfaces.begin());
    EXPECT_EQ(configure(plan), Changes{});
    plan.interfaces.pop_back();
    EXPECT_EQ(configure(plan), Changes{kPmaps + "openconfig:four: gone"});
    plan.interfaces.clear();
    EXPECT_EQ(configure(plan), Changes{kPmaps + "openconfig:four:six gone"});
}

TEST_F(OpenConfigTranslatorTest, bringsTheNewPairBeforeTheOldOneGoes) {
    ConfigurationPlan plan = twoFamilies();
    given(plan);
    plan.interfaces = {{"four", ""}};
    const Changes changes = configure(plan);
    ASSERT_EQ(changes.size(), 2u);
    EXPECT_TRUE(changes[0].starts_with(kPmaps + "openconfig:four: = ")) << changes[0];
    EXPECT_EQ(changes[1], kPmaps + "openconfig:four:six gone");
}

TEST_F(OpenConfigTranslatorTest, leavesGroupsThatStayTheirNumbers) {
    given({{"a", "b", "c"}, {}, {}});
    EXPECT_EQ(configure({{"new", "c", "b", "a"}, {}, {}}), Changes{kTcs + "new = 3"});
}

TEST_F(OpenConfigTranslatorTest, givesNewGroupsTheLeastNumbersThatNoGroupOfTheMapHas) {
    given({{"a", "b", "c"}, {}, {}});
    EXPECT_EQ(configure({{"x", "b", "y"}, {}, {}}),
              (Changes{kTcs + "x = 3", kTcs + "y = 4", kTcs + "a gone", kTcs + "c gone"}));
    EXPECT_EQ(configure({{"x", "b", "y", "z"}, {}, {}}), (Changes{kTcs + "z = 0"}));
}

TEST_F(OpenConfigTranslatorTest, movesATermToANewGroupBeforeTheOldOneIsRemoved) {
    given({{"old"}, {{"C", "", {{"T", {}, "old"}}}}, {{"C", ""}}});
    EXPECT_EQ(configure({{"new"}, {{"C", "", {{"T", {}, "new"}}}}, {{"C", ""}}}),
              (Changes{kTcs + "new = 1",
                       kClassifiers + R"(C/terms/term/T = {"id":"T","stateId":"T","actions":{)"
                                      R"("targetGroup":"new"}})",
                       kPmaps + R"(openconfig:C:/classes/openconfig:C:T = {"action":{"4":1}})",
                       kPmaps + "openconfig:C:/version = 2", kTcs + "old gone"}));
}

TEST_F(OpenConfigTranslatorTest, removesTheMapWithItsLastGroup) {
    given({{"a"}, {}, {}});
    EXPECT_EQ(configure(ConfigurationPlan{}), (Changes{kTcs + "a gone", kGroups + " = null"}));
    EXPECT_EQ(configure({{"b"}, {}, {}}), (Changes{kGroups + " = {}", kTcs + "b = 0"}));
}

TEST_F(OpenConfigTranslatorTest, numbersTheFirstDocumentsGroupsByPlaceWhateverOthersHave) {
    givenLine(kGroups, R"({"tc":{"mine":1}})");
    EXPECT_EQ(configure({{"a", "b"}, {}, {}}), (Changes{kTcs + "a = 0", kTcs + "b = 1"}));
}

TEST_F(OpenConfigTranslatorTest, leavesTheNumbersThatOthersHaveToThem) {
    given({{"a"}, {}, {}});
    givenLine(kTcs + "mine", "1");
    EXPECT_EQ(configure({{"b", "a"}, {}, {}}), Changes{kTcs + "b = 2"});
    EXPECT_EQ(configureText("{}"), (Changes{kTcs + "b gone", kTcs + "a gone"}));
    EXPECT_EQ(db->at("qos/input/config/cli"),
              R"({"forwardingGroupNameToTcMap":{"tc":{"mine":1}}})");
}

TEST_F(OpenConfigTranslatorTest, leavesWhatWasThereBeforeItCame) {
    // The same configuration, as a state document of an earlier run would bring it.
    given(twoFamilies());
    const std::string saved = db->all();
    recorder.reset();
    db = std::make_unique<TextDatabase>();
    ASSERT_EQ(db->load(saved), "");
    recorder = std::make_unique<ChangeRecorder>(db->database);
    EXPECT_EQ(configure(twoFamilies()), Changes{});
    EXPECT_EQ(configureText("{}"), Changes{});
    EXPECT_EQ(db->all(), saved);
}

TEST_F(OpenConfigTranslatorTest, takesBackOnlyWhatItAddedToTheObjectsOfOthers) {
    givenLine(kCmaps + "openconfig:C:T/match/matchCos", R"("5")");
    givenLine(kAcls4 + "openconfig:C:T/aclSubConfig/ruleIdBySequence/7", "70");
    givenLine(kPmaps + "openconfig:C:/classes/mine/action/1", "2");
    givenLine(kClassifiers + "C/terms/term/mine", "{}");
    givenLine(kGroups, "{}");
    const std::string before = db->all();
    given({{"g"}, {{"C", "", {{"T", {1, 2}, "g"}}}}, {{"C", ""}}});
    EXPECT_NE(db->all(), before);
    given({});
    // Versions only rise.
    givenLine(kPmaps + "openconfig:C:/version", "0");
    EXPECT_EQ(db->all(), before);
}

TEST_F(OpenConfigTranslatorTest, leavesWhatOthersAddedToItsObjects) {
    given(twoFamilies());
    givenLine(kCmaps + "openconfig:four:v/match/matchCos", R"("5")");
    givenLine(kPmaps + "openconfig:four:six",
              R"({"version":9,"classes":{"mine":{},"openconfig:four:v":{"action":{"1":7}}}})");
    givenLine(kAcls4 + "openconfig:four:v/aclSubConfig/ruleIdBySequence/15", "10");
    EXPECT_EQ(configure(twoFamilies()), Changes{});
    ConfigurationPlan later = twoFamilies();
    later.classifiers[0].terms[0].group = "lead";
    const Changes changes = configure(later);
    const std::string pmap = kPmaps + "openconfig:four:six";
    ASSERT_EQ(changes.size(), 3u);
    EXPECT_EQ(changes[1], pmap + R"(/classes/openconfig:four:v = {"action":{"1":7,"4":1}})");
    EXPECT_EQ(changes[2], pmap + "/version = 10");
}

TEST_F(OpenConfigTranslatorTest, makesAgainWhatOthersRemoved) {
    given(twoFamilies());
    const std::string before = db->all();
    ASSERT_EQ(db->remove(kCmaps + "openconfig:four:v"), "");
    ASSERT_EQ(db->remove(kAcls4 + "openconfig:four:d/aclSubConfig/ruleIdBySequence/20"), "");
    ASSERT_EQ(db->remove(kClassifiers + "six/terms"), "");
    ASSERT_EQ(db->remove(kPmaps + "openconfig:four:six"), "");
    ASSERT_EQ(db->remove(kGroups), "");
    recorder->take();
    EXPECT_EQ(configure(twoFamilies()).size(), 7u);
    EXPECT_EQ(db->all(), before);
    given({});
    EXPECT_EQ(db->all(), kNothingLeft);
}

TEST_F(OpenConfigTranslatorTest, takesAnAccessListThatIsNotConfiguredForNone) {
    ASSERT_EQ(db->update(kAcls4 + "openconfig:C:T", "{}"), "");
    ASSERT_EQ(db->update(kAcls4 + "openconfig:C:T", "null"), "");
    recorder->take();
    given({{}, {{"C", "", {{"T", {1}}}}}, {}});
    EXPECT_EQ(configureText("{}").front(), kAcls4 + "openconfig:C:T = null");
    EXPECT_EQ(db->at("acl/config/cli"),
              R"({"aclTypeConfig":{"ipv4":{"aclConfig":{"openconfig:C:T":null}}}})");
}

TEST_F(OpenConfigTranslatorTest, wrapsTheVersion) {
    given(twoFamilies());
    givenLine(kPmaps + "openconfig:four:six/version", "4294967295");
    ConfigurationPlan later = twoFamilies();
    later.classifiers[0].terms[0].group.clear();
    EXPECT_EQ(configure(later).back(), kPmaps + "openconfig:four:six/version = 0");
}

}  // namespace
}  // namespace QosAgent
