#include <gtest/gtest.h>

#include "agent/database/Editor.h"
#include "tests/agent/support/TextDatabase.h"

namespace QosAgent {
namespace {

const std::string kCmaps = "qos/status/cmapTypeStatus/mapQos/cmapStatus";
const std::string kPmaps = "qos/status/pmapTypeStatus/mapQos/pmapStatus";
const std::string kGroups = "qos/input/config/cli/forwardingGroupNameToTcMap";
const std::string kAcls = "acl/config/cli/aclTypeConfig/ipv4/aclConfig";
const std::string kClassifiers = "qos/openconfig/config/classifiers/classifier";

class EditorTest : public ::testing::Test {
protected:
    void given(const std::string& document) {
        ASSERT_EQ(db.load(document), "");
        recorder.take();
    }
    void givenVoice() {
        given(R"({"qos/status":{"cmapTypeStatus":{"mapQos":{"cmapStatus":{
              "voice":{"match":{"matchIpAccessGroup":"v4","matchDscp":""}}}}}}})");
    }
    void givenTerm() {
        given(R"({"qos/openconfig/config/classifiers":{"classifier":{"C":{"terms":{"term":{
              "T":{"conditions":{"ipv4":{"dscp":46}}}}}}}}})");
    }

    TextDatabase db;
    ChangeRecorder recorder{db.database};
};

TEST_F(EditorTest, buildsWhatIsMissingWholeAndAttachesItWithOneChange) {
    EXPECT_EQ(db.update(kCmaps + "/voice/match/matchDscp", R"("")"), "");
    EXPECT_EQ(recorder.take(),
              Changes{"qos/status/cmapTypeStatus/mapQos = "
                      R"({"cmapStatus":{"voice":{"cmapName":"voice","match":{"matchDscp":""}}}})"});
}

TEST_F(EditorTest, attachesAMissingMemberAtItsParent) {
    givenVoice();
    EXPECT_EQ(db.update(kCmaps, R"({"data":{}})"), "");
    EXPECT_EQ(recorder.take(), Changes{kCmaps + R"(/data = {"cmapName":"data"})"});
}

TEST_F(EditorTest, givesAMemberTheKeysOfItsCollectionAndOfItsHolder) {
    EXPECT_EQ(db.update("acl/config/cli", R"({"aclTypeConfig":{"ipv6":{"aclConfig":{"a":{}}}}})"),
              "");
    EXPECT_EQ(db.at("acl/config/cli"),
              R"({"aclTypeConfig":{"ipv6":{"aclConfig":{"a":{"aclName":"a","aclType":"ipv6"}}}}})");
}

TEST_F(EditorTest, changesMembersInTheOrderTheValueGivesThem) {
    givenVoice();
    EXPECT_EQ(db.update(kCmaps + "/voice",
                        R"({"match":{"matchVlan":"2","matchCos":"1","matchDscp":"3"}})"),
              "");
    EXPECT_EQ(recorder.take(), (Changes{kCmaps + "/voice/match/matchVlan = \"2\"",
                                        kCmaps + "/voice/match/matchCos = \"1\"",
                                        kCmaps + "/voice/match/matchDscp = \"3\""}));
}

TEST_F(EditorTest, changesAttributesInTheOrderOfTheTable) {
    given(R"({"qos/status":{"pmapTypeStatus":{"mapPbr":{}},"cmapTypeStatus":{"mapPbr":{}}}})");
    EXPECT_EQ(db.update("qos/status",
                        R"({"cmapTypeStatus":{"mapQos":{}},"pmapTypeStatus":{"mapQos":{}}})"),
              "");
    EXPECT_EQ(recorder.take(), (Changes{"qos/status/pmapTypeStatus/mapQos = {}",
                                        "qos/status/cmapTypeStatus/mapQos = {}"}));
}

TEST_F(EditorTest, setsTheVersionAfterTheClasses) {
    given(R"({"qos/status":{"pmapTypeStatus":{"mapQos":{"pmapStatus":{"p":{}}}}}})");
    EXPECT_EQ(db.update(kPmaps + "/p", R"({"version":7,"classes":{"c":{"action":{"4":2}}}})"), "");
    EXPECT_EQ(recorder.take(), (Changes{kPmaps + R"(/p/classes/c = {"action":{"4":2}})",
                                        kPmaps + "/p/version = 7"}));
}

TEST_F(EditorTest, setsTheSequenceAfterTheRules) {
    given(
        R"({"acl/config/cli":{"aclTypeConfig":{"ipv4":{"aclConfig":{"a":{"aclSubConfig":{}}}}}}})");
    EXPECT_EQ(db.update(kAcls + "/a/aclSubConfig",
                        R"({"ruleIdBySequence":{"20":2,"10":1},"ipRuleById":{"1":{}}})"),
              "");
    const std::string sub = kAcls + "/a/aclSubConfig";
    EXPECT_EQ(recorder.take(),
              (Changes{sub + R"(/ipRuleById/1 = {"filter":{"dscpValue":0,"dscpEnabled":false}})",
                       sub + "/ruleIdBySequence/20 = 2", sub + "/ruleIdBySequence/10 = 1"}));
}

TEST_F(EditorTest, publishesNothingWhenAnUpdateChangesNothing) {
    givenVoice();
    EXPECT_EQ(db.update(kCmaps, R"({"voice":{"cmapName":"voice","match":{"matchDscp":""}}})"), "");
    EXPECT_EQ(recorder.take(), Changes{});
}

TEST_F(EditorTest, mergesIntoAValueAndPublishesItOnce) {
    givenTerm();
    EXPECT_EQ(db.update(kClassifiers + "/C/terms/term/T",
                        R"({"actions":{"targetGroup":"g"},"stateId":"S"})"),
              "");
    EXPECT_EQ(recorder.take(),
              Changes{kClassifiers +
                      "/C/terms/term/T = "
                      R"({"id":"T","stateId":"S","conditions":{"ipv4":{"dscp":46},"ipv6":{}},)"
                      R"("actions":{"targetGroup":"g"}})"});
}

TEST_F(EditorTest, buildsOptionalRecordsAlongThePath) {
    givenTerm();
    EXPECT_EQ(db.update(kClassifiers + "/C/terms/term/U/conditions/ipv6/dscpSet", "[9,8]"), "");
    EXPECT_EQ(
        recorder.take(),
        Changes{kClassifiers +
                "/C/terms/term/U = "
                R"({"id":"U","stateId":"U","conditions":{"ipv4":{},"ipv6":{"dscpSet":[9,8]}}})"});
}

TEST_F(EditorTest, setsListsWhole) {
    givenTerm();
    const std::string term = kClassifiers + "/C/terms/term/T";
    EXPECT_EQ(db.update(term + "/conditions/ipv4", R"({"dscpSet":[1,2,2]})"), "");
    EXPECT_EQ(db.update(term + "/conditions/ipv4", R"({"dscpSet":[3]})"), "");
    EXPECT_EQ(
        recorder.take()[1],
        term +
            R"( = {"id":"T","stateId":"T","conditions":{"ipv4":{"dscp":46,"dscpSet":[3]},"ipv6":{}}})");
}

TEST_F(EditorTest, unsetsOptionalsByNull) {
    givenTerm();
    EXPECT_EQ(db.update(kClassifiers + "/C/terms/term/T", R"({"conditions":null})"), "");
    EXPECT_EQ(recorder.take(),
              Changes{kClassifiers + R"(/C/terms/term/T = {"id":"T","stateId":"T"})"});
}

TEST_F(EditorTest, takesOutASingleEntityByNull) {
    givenTerm();
    EXPECT_EQ(db.update(kClassifiers + "/C/terms", "null"), "");
    EXPECT_EQ(db.update(kClassifiers + "/C", R"({"terms":null})"), "");
    EXPECT_EQ(recorder.take(), Changes{kClassifiers + "/C/terms = null"});
}

TEST_F(EditorTest, makesAnEntryNullAndAnEntityAgain) {
    given(R"({"acl/config/cli":{"aclTypeConfig":{"ipv4":{"aclConfig":{"a":{}}}}}})");
    EXPECT_EQ(db.update(kAcls, R"({"a":null,"b":null})"), "");
    EXPECT_EQ(db.update(kAcls + "/a/aclSubConfig", "{}"), "");
    EXPECT_EQ(recorder.take(),
              (Changes{kAcls + "/a = null", kAcls + "/b = null",
                       kAcls + R"(/a = {"aclName":"a","aclType":"ipv4","aclSubConfig":{}})"}));
}

TEST_F(EditorTest, fillsTheNameIntoTheConfigOfANewClassifier) {
    EXPECT_EQ(db.update(kClassifiers + "/C/config/type", R"("IPV6")"), "");
    EXPECT_EQ(recorder.take(),
              Changes{kClassifiers + R"(/C = {"config":{"name":"C","type":"IPV6"}})"});
}

TEST_F(EditorTest, mergesTheActionsOfAClass) {
    given(R"({"qos/status":{"pmapTypeStatus":{"mapQos":{"pmapStatus":{
          "p":{"classes":{"c":{"action":{"4":1,"9":9}}}}}}}}})");
    EXPECT_EQ(db.update(kPmaps + "/p/classes/c/action", R"({"7":7,"4":2})"), "");
    EXPECT_EQ(db.update(kPmaps + "/p/classes/c/action/1", "0"), "");
    EXPECT_EQ(recorder.take(),
              (Changes{kPmaps + R"(/p/classes/c = {"action":{"4":2,"7":7,"9":9}})",
                       kPmaps + R"(/p/classes/c = {"action":{"1":0,"4":2,"7":7,"9":9}})"}));
}

TEST_F(EditorTest, replacesAMemberEntityAfterRemovingIt) {
    givenVoice();
    EXPECT_EQ(db.replace(kCmaps + "/voice", R"({"match":{"matchCos":"1"}})"), "");
    EXPECT_EQ(recorder.take(),
              (Changes{kCmaps + "/voice gone",
                       kCmaps + R"(/voice = {"cmapName":"voice","match":{"matchCos":"1"}})"}));
}

TEST_F(EditorTest, replacesAMemberValueAfterRemovingIt) {
    givenTerm();
    EXPECT_EQ(db.replace(kClassifiers + "/C/terms/term/T", "{}"), "");
    EXPECT_EQ(recorder.take(),
              (Changes{kClassifiers + "/C/terms/term/T gone",
                       kClassifiers + R"(/C/terms/term/T = {"id":"T","stateId":"T"})"}));
}

TEST_F(EditorTest, replacesNothingByEnteringOnly) {
    givenVoice();
    EXPECT_EQ(db.replace(kCmaps + "/voice/match/matchCos", R"("1")"), "");
    EXPECT_EQ(recorder.take(), Changes{kCmaps + R"(/voice/match/matchCos = "1")"});
}

TEST_F(EditorTest, replacesAnEntryByNull) {
    given(R"({"acl/config/cli":{"aclTypeConfig":{"ipv4":{"aclConfig":{"a":{}}}}}})");
    EXPECT_EQ(db.replace(kAcls + "/a", "null"), "");
    EXPECT_EQ(recorder.take(), (Changes{kAcls + "/a gone", kAcls + "/a = null"}));
}

TEST_F(EditorTest, replacesASingleEntityInOneChange) {
    given(R"({"qos/input/config/cli":{"forwardingGroupNameToTcMap":{"tc":{"a":1,"b":2}}}})");
    EXPECT_EQ(db.replace(kGroups, R"({"tc":{"c":3}})"), "");
    EXPECT_EQ(recorder.take(), Changes{kGroups + R"( = {"tc":{"c":3}})"});
}

TEST_F(EditorTest, replacesAPartOfAValueInOneChange) {
    givenTerm();
    EXPECT_EQ(db.replace(kClassifiers + "/C/terms/term/T/conditions", R"({"ipv6":{"dscp":1}})"),
              "");
    EXPECT_EQ(recorder.take(),
              Changes{kClassifiers +
                      "/C/terms/term/T = "
                      R"({"id":"T","stateId":"T","conditions":{"ipv4":{},"ipv6":{"dscp":1}}})"});
}

TEST_F(EditorTest, replacesARecordButKeepsItsName) {
    given(
        R"({"qos/openconfig/config/classifiers":{"classifier":{"C":{"config":{"type":"IPV6"}}}}})");
    EXPECT_EQ(db.replace(kClassifiers + "/C/config", "{}"), "");
    EXPECT_EQ(recorder.take(), Changes{kClassifiers + R"(/C/config = {"name":"C"})"});
}

TEST_F(EditorTest, replacesAPlainMemberOnlyWhenItDiffers) {
    given(R"({"qos/status":{"pmapTypeStatus":{"mapQos":{"pmapStatus":{"p":{"version":1}}}}}})");
    EXPECT_EQ(db.replace(kPmaps + "/p/version", "1"), "");
    EXPECT_EQ(db.replace(kPmaps + "/p/version", "2"), "");
    EXPECT_EQ(recorder.take(), Changes{kPmaps + "/p/version = 2"});
}

TEST_F(EditorTest, replacesACollectionBySweepingItFirst) {
    givenVoice();
    EXPECT_EQ(db.update(kCmaps, R"({"zeta":{},"alpha":{}})"), "");
    recorder.take();
    EXPECT_EQ(db.replace(kCmaps, R"({"new":{},"voice":{}})"), "");
    EXPECT_EQ(recorder.take(),
              (Changes{kCmaps + "/alpha gone", kCmaps + "/zeta gone",
                       kCmaps + R"(/new = {"cmapName":"new"})", kCmaps + "/voice gone",
                       kCmaps + R"(/voice = {"cmapName":"voice"})"}));
}

TEST_F(EditorTest, replacesARootBySweepingAllItsCollectionsFirst) {
    given(
        R"({"qos/status":{"cmapTypeStatus":{"mapQos":{},"mapCopp":{}},"pmapTypeStatus":{"7":{}}}})");
    EXPECT_EQ(db.replace("qos/status", R"({"cmapTypeStatus":{"mapQos":{}}})"), "");
    EXPECT_EQ(recorder.take(),
              (Changes{"qos/status/pmapTypeStatus/7 gone", "qos/status/cmapTypeStatus/mapCopp gone",
                       "qos/status/cmapTypeStatus/mapQos gone",
                       "qos/status/cmapTypeStatus/mapQos = {}"}));
}

TEST_F(EditorTest, unsetsTheSingleEntityThatAReplacedRootLeavesOut) {
    given(R"({"qos/input/config/cli":{"forwardingGroupNameToTcMap":{}}})");
    EXPECT_EQ(db.replace("qos/input/config/cli", "{}"), "");
    EXPECT_EQ(recorder.take(), Changes{kGroups + " = null"});
}

TEST_F(EditorTest, replacesTheActionsOfAClassAsAWhole) {
    given(R"({"qos/status":{"pmapTypeStatus":{"mapQos":{"pmapStatus":{
          "p":{"classes":{"c":{"action":{"4":1,"9":9}}}}}}}}})");
    EXPECT_EQ(db.replace(kPmaps + "/p/classes/c/action", R"({"7":7})"), "");
    EXPECT_EQ(recorder.take(), Changes{kPmaps + R"(/p/classes/c = {"action":{"7":7}})"});
}

TEST_F(EditorTest, buildsWhatIsMissingAlongThePathOfAReplace) {
    EXPECT_EQ(db.replace(kClassifiers + "/C/terms/term/T/actions", R"({"targetGroup":"g"})"), "");
    EXPECT_EQ(
        recorder.take(),
        Changes{kClassifiers + R"(/C = {"config":{"name":"C"},"terms":{"term":{"T":)"
                               R"({"id":"T","stateId":"T","actions":{"targetGroup":"g"}}}}})"});
}

TEST_F(EditorTest, deletesMembersAndPublishesIt) {
    givenVoice();
    EXPECT_EQ(db.remove(kCmaps + "/voice/match/matchDscp"), "");
    EXPECT_EQ(db.remove(kCmaps + "/voice"), "");
    EXPECT_EQ(recorder.take(),
              (Changes{kCmaps + "/voice/match/matchDscp gone", kCmaps + "/voice gone"}));
}

TEST_F(EditorTest, deletesNullEntries) {
    given(R"({"acl/config/cli":{"aclTypeConfig":{"ipv4":{"aclConfig":{"a":null}}}}})");
    EXPECT_EQ(db.remove(kAcls + "/a"), "");
    EXPECT_EQ(recorder.take(), Changes{kAcls + "/a gone"});
}

TEST_F(EditorTest, deletesASingleEntity) {
    given(R"({"qos/input/config/cli":{"forwardingGroupNameToTcMap":{}}})");
    EXPECT_EQ(db.remove(kGroups), "");
    EXPECT_EQ(db.remove(kGroups), "");
    EXPECT_EQ(recorder.take(), Changes{kGroups + " = null"});
}

TEST_F(EditorTest, deletesOptionalsInsideValues) {
    givenTerm();
    const std::string term = kClassifiers + "/C/terms/term/T";
    EXPECT_EQ(db.remove(term + "/conditions/ipv4/dscp"), "");
    EXPECT_EQ(db.remove(term + "/conditions"), "");
    EXPECT_EQ(recorder.take(),
              (Changes{term + R"( = {"id":"T","stateId":"T","conditions":{"ipv4":{},"ipv6":{}}})",
                       term + R"( = {"id":"T","stateId":"T"})"}));
}

TEST_F(EditorTest, deletesAnActionOfAClass) {
    given(R"({"qos/status":{"pmapTypeStatus":{"mapQos":{"pmapStatus":{
          "p":{"classes":{"c":{"action":{"4":1,"9":9}}}}}}}}})");
    EXPECT_EQ(db.remove(kPmaps + "/p/classes/c/action/4"), "");
    EXPECT_EQ(db.remove(kPmaps + "/p/classes/c/action/5"), "");
    EXPECT_EQ(recorder.take(), Changes{kPmaps + R"(/p/classes/c = {"action":{"9":9}})"});
}

TEST_F(EditorTest, deletesTheTypeOfAClassifier) {
    given(
        R"({"qos/openconfig/config/classifiers":{"classifier":{"C":{"config":{"type":"IPV6"}}}}})");
    EXPECT_EQ(db.remove(kClassifiers + "/C/config/type"), "");
    EXPECT_EQ(recorder.take(), Changes{kClassifiers + R"(/C/config = {"name":"C"})"});
}

TEST_F(EditorTest, deletesNothingWhereNothingIs) {
    given(R"({"acl/config/cli":{"aclTypeConfig":{"ipv4":{"aclConfig":{"a":null}}}}})");
    for (const std::string& path :
         {kCmaps + "/voice", kCmaps + "/voice/match/matchDscp", kAcls + "/a/aclSubConfig",
          kGroups + "/tc/gold", kClassifiers + "/C/terms/term/T/conditions/ipv4/dscp"})
        EXPECT_EQ(db.remove(path), "") << path;
    EXPECT_EQ(recorder.take(), Changes{});
}

TEST_F(EditorTest, leavesARemovedEntityItsMembers) {
    givenVoice();
    const auto type = Vex::Value(std::uint64_t{1});
    const auto& root = *db.database.subtreeAt("qos/status")->root;
    const auto* attribute = Vex::attributeNamed(root.typeData(), "cmapTypeStatus");
    const Vex::NodeRef held = attribute->collection->get(&root, type).as<Vex::NodeRef>();
    EXPECT_EQ(db.remove("qos/status/cmapTypeStatus/mapQos"), "");
    std::string text;
    JsonWriter writer(text);
    writeEntity(writer, *held);
    EXPECT_EQ(text, R"({"cmapStatus":{"voice":{"cmapName":"voice",)"
                    R"("match":{"matchIpAccessGroup":"v4","matchDscp":""}}}})");
}

TEST_F(EditorTest, touchesMembersWhetherPresentOrNot) {
    givenVoice();
    EXPECT_EQ(db.touch(kCmaps + "/voice"), "");
    EXPECT_EQ(db.touch(kCmaps + "/data"), "");
    EXPECT_EQ(db.touch(kCmaps + "/voice/match/matchCos"), "");
    EXPECT_EQ(recorder.take(),
              (Changes{kCmaps + R"(/voice = {"cmapName":"voice",)"
                                R"("match":{"matchIpAccessGroup":"v4","matchDscp":""}})",
                       kCmaps + "/data gone", kCmaps + "/voice/match/matchCos gone"}));
}

TEST_F(EditorTest, touchesSingleEntitiesAndRecords) {
    givenTerm();
    EXPECT_EQ(db.touch(kGroups), "");
    EXPECT_EQ(db.touch(kClassifiers + "/C/config"), "");
    EXPECT_EQ(db.touch(kClassifiers + "/C/config/type"), "");
    EXPECT_EQ(recorder.take(),
              (Changes{kGroups + " = null", kClassifiers + R"(/C/config = {"name":"C"})",
                       kClassifiers + R"(/C/config = {"name":"C"})"}));
}

TEST_F(EditorTest, touchesTheKeyOfAValueFromInsideIt) {
    givenTerm();
    const std::string term = kClassifiers + "/C/terms/term/T";
    const std::string published =
        term + R"( = {"id":"T","stateId":"T","conditions":{"ipv4":{"dscp":46},"ipv6":{}}})";
    EXPECT_EQ(db.touch(term + "/conditions/ipv4/dscp"), "");
    EXPECT_EQ(db.touch(term + "/actions"), "");
    EXPECT_EQ(recorder.take(), (Changes{published, published}));
}

TEST_F(EditorTest, touchesNothingBelowWhatDoesNotExist) {
    given(R"({"acl/config/cli":{"aclTypeConfig":{"ipv4":{"aclConfig":{"a":null}}}},
        "qos/openconfig/config/classifiers":{"classifier":{"C":{"terms":{"term":{"T":{}}}}}}})");
    for (const std::string& path :
         {kCmaps + "/voice", kAcls + "/a/aclSubConfig", kGroups + "/tc/gold",
          kClassifiers + "/C/terms/term/U/conditions",
          kClassifiers + "/C/terms/term/T/conditions/ipv4/dscp"})
        EXPECT_EQ(db.touch(path), "") << path;
    EXPECT_EQ(recorder.take(), Changes{});
}

TEST_F(EditorTest, acceptsAMemberThatAgreesWithTheKeyItRepeats) {
    EXPECT_EQ(db.update(kAcls + "/a/aclType", R"("ipv4")"), "");
    EXPECT_EQ(db.update(kAcls + "/a", R"({"aclName":"a"})"), "");
    EXPECT_EQ(recorder.take().size(), 1u);
}

}  // namespace
}  // namespace QosAgent
