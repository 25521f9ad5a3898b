#include <gtest/gtest.h>

#include "agent/database/Document.h"
#include "tests/agent/support/TextDatabase.h"

namespace QosAgent {
namespace {

/// All five subtrees with everything that can be in them, in canonical form.
const char* const kEverything =
    R"({"qos/status":{"pmapTypeStatus":{"mapCopp":{},"mapQos":{"pmapStatus":{"a":{"pmapName":"a",)"
    R"("version":4294967295,"classes":{"c":{"action":{"4":2,"10":0}},"d":{}}},"b":{"pmapName":"b",)"
    R"("version":0}}}},"cmapTypeStatus":{"mapQos":{"cmapStatus":{"voice":{"cmapName":"voice",)"
    R"("match":{"matchIpAccessGroup":"v4","matchVlan":"","9":"x"}}}},"200":{}}},)"
    R"("qos/input/config/cli":{"forwardingGroupNameToTcMap":{"tc":{"gold":3}}},)"
    R"("acl/config/cli":{"aclTypeConfig":{"ipv4":{"aclConfig":{"a":{"aclName":"a",)"
    R"("aclType":"ipv4","aclSubConfig":{"ruleIdBySequence":{"9":1,"10":18446744073709551615},)"
    R"("ipRuleById":{"1":{"filter":{"dscpValue":46,"dscpEnabled":true}}},)"
    R"("ip6RuleById":{"2":{"filter":{"trafficClass":184,"trafficClassMask":252}}}}},)"
    R"("b":{"aclName":"b","aclType":"ipv4","aclSubConfig":{}},"z":null}}}},)"
    R"("qos/openconfig/config/classifiers":{"classifier":{"C":{"config":{"name":"C",)"
    R"("type":"IPV6"},"terms":{"term":{"T":{"id":"T","stateId":"S",)"
    R"("conditions":{"ipv4":{},"ipv6":{"dscp":0,"dscpSet":[255,1,1]}},)"
    R"("actions":{"targetGroup":""}}}}},"D":{"config":{"name":"D"},"terms":{}}}},)"
    R"("qos/openconfig/state/classifiers":{"classifier":{"C":{"state":{"name":"C",)"
    R"("type":"IPV4"},"terms":{"term":{"T":{"id":"T","stateId":"T"}}}}}}})";

TEST(DocumentTest, readsBackWhatWasPrinted) {
    TextDatabase db;
    ASSERT_EQ(db.load(kEverything), "");
    EXPECT_EQ(db.all(), kEverything);
    ASSERT_EQ(db.load(kEverything), "");
    EXPECT_EQ(db.all(), kEverything);
}

TEST(DocumentTest, mergesDocumentsInTheOrderGiven) {
    TextDatabase db;
    ASSERT_EQ(db.load(R"({"qos/input/config/cli":{"forwardingGroupNameToTcMap":
        {"tc":{"a":1,"b":2}}}})"),
              "");
    ASSERT_EQ(db.load(R"({"qos/input/config/cli":{"forwardingGroupNameToTcMap":
        {"tc":{"b":3,"c":4}}}})"),
              "");
    EXPECT_EQ(db.at("qos/input/config/cli"),
              R"({"forwardingGroupNameToTcMap":{"tc":{"a":1,"b":3,"c":4}}})");
}

TEST(DocumentTest, takesNullForASingleEntityAsNone) {
    TextDatabase db;
    ASSERT_EQ(db.load(R"({"qos/input/config/cli":{"forwardingGroupNameToTcMap":null}})"), "");
    EXPECT_EQ(db.at("qos/input/config/cli"), "{}");
}

TEST(DocumentTest, readsConditionsAsPresentWithBothFamiliesEmpty) {
    TextDatabase db;
    ASSERT_EQ(db.load(R"({"qos/openconfig/config/classifiers":{"classifier":{"C":{"terms":{"term":
        {"T":{"conditions":{},"actions":null}}}}}}})"),
              "");
    EXPECT_EQ(db.at("qos/openconfig/config/classifiers"),
              R"({"classifier":{"C":{"config":{"name":"C"},"terms":{"term":{"T":{"id":"T",)"
              R"("stateId":"T","conditions":{"ipv4":{},"ipv6":{}}}}}}}})");
}

TEST(DocumentTest, fillsInWhatIsLeftOutOfSomethingNew) {
    TextDatabase db;
    ASSERT_EQ(db.load(R"({"qos/openconfig/state/classifiers":{"classifier":{"C":{}}}})"), "");
    EXPECT_EQ(db.at("qos/openconfig/state/classifiers"),
              R"({"classifier":{"C":{"state":{"name":"C","type":"IPV4"}}}})");
}

TEST(DocumentTest, keepsAnyCharacterInNames) {
    TextDatabase db;
    const std::string document =
        R"({"qos/status":{"cmapTypeStatus":{"mapQos":{"cmapStatus":{"\u0000/~\n\"\u007f\u00e9":{}}}}}})";
    ASSERT_EQ(db.load(document), "");
    EXPECT_EQ(db.at("qos/status"),
              "{\"cmapTypeStatus\":{\"mapQos\":{\"cmapStatus\":{\"\\u0000/~\\n\\\"\x7f\xc3\xa9\":"
              "{\"cmapName\":\"\\u0000/~\\n\\\"\x7f\xc3\xa9\"}}}}}");
}

TEST(DocumentTest, tellsHowFarItHasCome) {
    TextDatabase db;
    const JsonResult json = parseJson(
        R"({"qos/input/config/cli":{"forwardingGroupNameToTcMap":{"tc":{"a":1,"b":2}}}})");
    std::vector<std::size_t> offsets;
    mergeDocument(db.database, std::get<Json>(json).root(),
                  [&](std::size_t offset) { offsets.push_back(offset); });
    EXPECT_EQ(offsets, (std::vector<std::size_t>{65, 71}));
}

}  // namespace
}  // namespace QosAgent
