#include <gtest/gtest.h>

#include "agent/database/Checker.h"
#include "tests/agent/support/TextDatabase.h"

namespace QosAgent {
namespace {

/// A document in which `@` marks where it is refused, and why.
struct Refused {
    const char* marked;
    const char* message;
};

class CheckerTest : public ::testing::Test {
protected:
    void expectRefused(const Refused& refused) {
        std::string text = refused.marked;
        const std::size_t mark = text.find('@');
        ASSERT_NE(mark, std::string::npos) << text;
        text.erase(mark, 1);
        const std::string before = db.all();
        EXPECT_EQ(db.load(text), std::to_string(mark + 1) + ": " + refused.message) << text;
        EXPECT_EQ(db.all(), before) << text;
    }

    TextDatabase db;
};

TEST_F(CheckerTest, refusesWhatIsNoMember) {
    expectRefused({R"({@"qos":{}})", R"(no subtree is mounted at the path "qos")"});
    expectRefused({R"({"qos/status":{@"x":{}}})", R"(unknown member "x")"});
    expectRefused(
        {R"({@"qos/statsu":{}})",
         R"(no subtree is mounted at the path "qos/statsu", did you mean "qos/status"?)"});
    expectRefused({R"({"qos/status":{@"cmapTypestatus":{}}})",
                   R"(unknown member "cmapTypestatus", did you mean "cmapTypeStatus"?)"});
    expectRefused({R"({"qos/status":{"cmapTypeStatus":{"mapQos":{@"mapType":"mapQos"}}}})",
                   R"(unknown member "mapType")"});
    expectRefused({R"({"acl/config/cli":{"aclTypeConfig":{"ipv4":{"aclConfig":{"a":{"aclSubConfig":
        {"ipRuleById":{"1":{"filter":{@"dscp":1}}}}}}}}}})",
                   R"(unknown member "dscp")"});
    expectRefused({R"({"qos/openconfig/config/classifiers":{"classifier":{"C":{@"name":"C"}}}})",
                   R"(unknown member "name")"});
}

TEST_F(CheckerTest, refusesValuesOfAnotherType) {
    expectRefused({"@[]", "expected an object, found an array"});
    expectRefused({R"({"qos/status":@null})", "expected an object, found null"});
    expectRefused({R"({"qos/status":{"cmapTypeStatus":@null}})", "expected an object, found null"});
    expectRefused({R"({"qos/status":{"cmapTypeStatus":{"mapQos":@null}}})",
                   "expected an object, found null"});
    const std::string map = R"({"qos/status":{"pmapTypeStatus":{"mapQos":{"pmapStatus":{"p":)";
    expectRefused(
        {(map + R"({"version":@"1"}}}}}})").c_str(), "expected a number, found a string"});
    expectRefused({(map + R"({"version":@null}}}}}})").c_str(), "expected a number, found null"});
    expectRefused({(map + R"({"pmapName":@1}}}}}})").c_str(), "expected a string, found a number"});
    const std::string rule =
        R"({"acl/config/cli":{"aclTypeConfig":{"ipv4":{"aclConfig":{"a":{"aclSubConfig":
           {"ipRuleById":{"1":{"filter":)";
    expectRefused({(rule + R"({"dscpEnabled":@1}}}}}}}}}})").c_str(),
                   "expected true or false, found a number"});
    expectRefused({(rule + R"(@null}}}}}}}}})").c_str(), "expected an object, found null"});
    const std::string term =
        R"({"qos/openconfig/config/classifiers":{"classifier":{"C":{"terms":{"term":{"T":)";
    expectRefused({(term + R"({"stateId":@null}}}}}}})").c_str(), "expected a string, found null"});
    expectRefused({(term + R"({"conditions":{"ipv4":{"dscpSet":@null}}}}}}}}})").c_str(),
                   "expected an array, found null"});
    expectRefused({(term + R"({"conditions":{"ipv4":{"dscpSet":[1,@"2"]}}}}}}}}})").c_str(),
                   "expected a number, found a string"});
    expectRefused({(term + R"(@null}}}}}})").c_str(), "expected an object, found null"});
}

TEST_F(CheckerTest, refusesNumbersThatAreNotPlainOrOutOfRange) {
    const std::string map = R"({"qos/status":{"pmapTypeStatus":{"mapQos":{"pmapStatus":{"p":)";
    for (const char* number : {"-1", "1.0", "1e3", "1E0", "-0"})
        expectRefused(
            {(map + R"({"version":@)" + number + "}}}}}}").c_str(),
             (R"(expected plain decimal digits, found ")" + std::string(number) + '"').c_str()});
    expectRefused({(map + R"({"version":@4294967296}}}}}})").c_str(),
                   R"("4294967296" is out of range 0 to 4294967295)"});
    expectRefused({(map + R"({"version":@99999999999999999999}}}}}})").c_str(),
                   R"("99999999999999999999" is out of range 0 to 4294967295)"});
    expectRefused({R"({"qos/openconfig/config/classifiers":{"classifier":{"C":{"terms":{"term":
        {"T":{"conditions":{"ipv6":{"dscp":@256}}}}}}}}})",
                   R"("256" is out of range 0 to 255)"});
}

TEST_F(CheckerTest, refusesKeysThatStandForNothing) {
    expectRefused({R"({"qos/status":{"cmapTypeStatus":{"mapQos":{"cmapStatus":{@"":{}}}}}})",
                   "a name must not be empty"});
    expectRefused({R"({"qos/status":{"cmapTypeStatus":{@"1":{}}}})",
                   R"("1" must be written by its name "mapQos")"});
    expectRefused(
        {R"({"qos/status":{"cmapTypeStatus":{@"256":{}}}})", R"("256" is out of range 0 to 255)"});
    expectRefused({R"({"qos/status":{"cmapTypeStatus":{@"mapqos":{}}}})",
                   R"(unknown name "mapqos", expected one of mapCopp, mapQos, mapPbr)"});
    expectRefused({R"({"qos/status":{"cmapTypeStatus":{@"07":{}}}})",
                   R"(expected a number without leading zeros, found "07")"});
    const std::string sub =
        R"({"acl/config/cli":{"aclTypeConfig":{"ipv4":{"aclConfig":{"a":{"aclSubConfig":)";
    expectRefused({(sub + R"({"ruleIdBySequence":{@"010":1}}}}}}}})").c_str(),
                   R"(expected a number without leading zeros, found "010")"});
    expectRefused({(sub + R"({"ruleIdBySequence":{@"4294967296":1}}}}}}}})").c_str(),
                   R"("4294967296" is out of range 0 to 4294967295)"});
    expectRefused({(sub + R"({"ipRuleById":{@"18446744073709551616":{}}}}}}}}})").c_str(),
                   R"("18446744073709551616" is out of range 0 to 18446744073709551615)"});
    expectRefused({(sub + R"({"ipRuleById":{@"+1":{}}}}}}}}})").c_str(),
                   R"(expected plain decimal digits, found "+1")"});
}

TEST_F(CheckerTest, refusesMembersThatDisagreeWithTheirKey) {
    expectRefused({R"({"qos/status":{"cmapTypeStatus":{"mapQos":{"cmapStatus":
        {"voice":{"cmapName":@"data"}}}}}})",
                   R"(does not agree with the key "voice")"});
    expectRefused({R"({"acl/config/cli":{"aclTypeConfig":{"ipv4":{"aclConfig":
        {"a":{"aclName":"a","aclType":@"ipv6"}}}}}})",
                   R"(does not agree with the key "ipv4")"});
    expectRefused({R"({"qos/openconfig/config/classifiers":{"classifier":{"C":
        {"config":{"name":@"D"}}}}})",
                   R"(does not agree with the key "C")"});
    expectRefused({R"({"qos/openconfig/state/classifiers":{"classifier":{"C":
        {"state":{"name":@"D","type":"IPV4"}}}}})",
                   R"(does not agree with the key "C")"});
    expectRefused({R"({"qos/openconfig/config/classifiers":{"classifier":{"C":{"terms":{"term":
        {"T":{"id":@"U"}}}}}}})",
                   R"(does not agree with the key "T")"});
}

TEST_F(CheckerTest, refusesTypesOfClassifiersByNumber) {
    const std::string config =
        R"({"qos/openconfig/config/classifiers":{"classifier":{"C":{"config":{"type":)";
    expectRefused({(config + "@0}}}}}").c_str(), "expected a name, found a number"});
    expectRefused(
        {(config + R"(@"7"}}}}})").c_str(), R"(unknown name "7", expected one of IPV4, IPV6)"});
}

TEST_F(CheckerTest, refusesADocumentWholeForAFaultAtItsEnd) {
    expectRefused({R"({"qos/status":{"cmapTypeStatus":{"mapQos":{}}},"acl/config/cli":@1})",
                   "expected an object, found a number"});
}

TEST_F(CheckerTest, reportsTheFirstOfSeveralFaults) {
    expectRefused({R"({"qos/status":{@"a":1},"b":2})", R"(unknown member "a")"});
}

TEST_F(CheckerTest, refusesDuplicatesWhereTheyStand) {
    expectRefused({R"({"qos/status":{},@"qos/status":{}})", R"(duplicate key "qos/status")"});
    expectRefused({R"({"qos/status":{"cmapTypeStatus":{"mapQos":{},@"map\u0051os":{}}}})",
                   R"(duplicate key "mapQos")"});
}

}  // namespace
}  // namespace QosAgent
