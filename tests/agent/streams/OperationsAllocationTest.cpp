#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

#include "tests/agent/support/Configurations.h"
#include "tests/agent/support/TextDatabase.h"
#include "tests/support/Allocations.h"

namespace QosAgent {
namespace {

/// What operations find.
constexpr std::string_view kDocument = R"({
    "qos/status": {
        "cmapTypeStatus": {"mapQos": {"cmapStatus": {"voice": {"match": {"matchDscp": "46"}}}}},
        "pmapTypeStatus": {"mapQos": {"pmapStatus": {
            "edge": {"version": 3, "classes": {"voice": {"action": {"4": 1}}}}}}}},
    "acl/config/cli": {"aclTypeConfig": {"ipv4": {"aclConfig": {"list": {"aclSubConfig": {
        "ruleIdBySequence": {"10": 1}, "ipRuleById": {"1": {"filter": {"dscpValue": 46}}}}}}}}},
    "qos/input/config/cli": {"forwardingGroupNameToTcMap": {"tc": {"gold": 1}}},
    "qos/openconfig/config/classifiers": {"classifier": {"in": {"terms": {"term": {
        "10": {"conditions": {"ipv4": {"dscpSet": [1, 2, 3]}}}}}}}}})";

/// Lets each allocation of an operation fail in turn.
class OperationsAllocationTest : public ::testing::Test {
protected:
    /// Each failure comes out, and the operation tried again comes to what it comes to at once.
    void expectConverges(const std::string& line) {
        TextDatabase text;
        TextDatabase untroubled;
        text.load(kDocument);
        untroubled.load(kDocument);
        ASSERT_EQ(untroubled.apply(line), "") << line;
        const std::size_t failures =
            TestSupport::failEachAllocation([&] { text.applyLine(line); }, [] {});
        EXPECT_GT(failures, 0u) << line;
        EXPECT_EQ(text.all(), untroubled.all()) << line;
    }
    /// No failure changes anything.
    void expectUntouched(const std::string& line) {
        TextDatabase text;
        text.load(kDocument);
        const std::string before = text.all();
        const std::size_t failures = TestSupport::failEachAllocation(
            [&] { text.applyLine(line); }, [&] { EXPECT_EQ(text.all(), before) << line; });
        EXPECT_GT(failures, 0u) << line;
        EXPECT_EQ(text.all(), before) << line;
    }
};

TEST_F(OperationsAllocationTest, updatesOnceThereIsMemory) {
    expectConverges(
        R"({"update": "acl/config/cli/aclTypeConfig/ipv6/aclConfig/other/aclSubConfig", "value": )"
        R"({"ruleIdBySequence": {"10": 2}, "ip6RuleById": {"2": {"filter": {"trafficClass": 8}}}}})");
    expectConverges(
        R"({"update": "qos/openconfig/config/classifiers/classifier/in/terms/term/10/conditions", )"
        R"("value": {"ipv4": {"dscpSet": [9, 8, 7]}}})");
}

TEST_F(OperationsAllocationTest, replacesOnceThereIsMemory) {
    expectConverges(
        R"({"replace": "qos/status", "value": {"cmapTypeStatus": {"mapQos": {"cmapStatus": {)"
        R"("video": {"match": {"matchDscp": "32"}}}}}}})");
}

TEST_F(OperationsAllocationTest, deletesOnceThereIsMemory) {
    expectConverges(
        R"({"delete": "qos/status/cmapTypeStatus/mapQos/cmapStatus/voice/match/matchDscp"})");
    expectConverges(
        R"({"delete": "acl/config/cli/aclTypeConfig/ipv4/aclConfig/list/aclSubConfig"})");
}

/// A failure leaves no subscriber behind that the next change would call.
TEST_F(OperationsAllocationTest, explainsOnceThereIsMemory) {
    for (const char* what : {R"({"explain": {"classifier": "in"}})", R"("differences")"}) {
        TextDatabase text;
        text.load(kDocument);
        const std::string classes = "qos/status/pmapTypeStatus/mapQos/pmapStatus/openconfig:in:";
        const std::size_t failures = TestSupport::failEachAllocation(
            [&] { text.applyLine(std::string(R"({"print": )") + what + "}"); },
            [&] {
                EXPECT_EQ(text.update(classes, R"({"classes": {"openconfig:in:10": {}}})"), "");
                EXPECT_EQ(text.remove(classes), "");
            });
        EXPECT_GT(failures, 0u) << what;
    }
}

/// Half a configuration is not taken up again, as numbers of groups depend on the one before: the
/// program ends.
TEST_F(OperationsAllocationTest, noticesEachFailureWhereAConfigurationIsApplied) {
    const std::string line = R"({"openconfig": )" + documentOf(bigConfiguration(2, 1, 2)) + "}";
    auto text = std::make_unique<TextDatabase>();
    const std::size_t failures = TestSupport::failEachAllocation(
        [&] { text->applyLine(line); }, [&] { text = std::make_unique<TextDatabase>(); });
    TextDatabase untroubled;
    ASSERT_EQ(untroubled.apply(line), "");
    EXPECT_EQ(text->all(), untroubled.all());
    EXPECT_GT(failures, 100u);
}

TEST_F(OperationsAllocationTest, loadsADocumentOnceThereIsMemory) {
    TextDatabase text;
    TextDatabase untroubled;
    untroubled.load(kDocument);
    const std::size_t failures =
        TestSupport::failEachAllocation([&] { text.load(kDocument); }, [] {});
    EXPECT_GT(failures, 50u);
    EXPECT_EQ(text.all(), untroubled.all());
}

TEST_F(OperationsAllocationTest, leavesTheDatabaseAloneWhereNothingIsToChange) {
    expectUntouched(R"({"touch": "qos/status/cmapTypeStatus/mapQos/cmapStatus/voice"})");
    expectUntouched(R"({"print": "database"})");
    expectUntouched(R"({"print": "openconfig"})");
    expectUntouched(R"({"print": "machines"})");
    expectUntouched(R"({"echo": "a text that is not short"})");
    expectUntouched(R"({"delete": "qos/status/cmapTypeStatus/mapQos/cmapStatus/video"})");
}

TEST_F(OperationsAllocationTest, leavesTheDatabaseAloneWhereALineIsRefused) {
    expectUntouched(R"({"update": "qos/status", "value": {"cmapTypeStatus": {"mapQos": {)"
                    R"("cmapStatus": {"video": {}}}}, "cmapStatusType": {}}})");
    expectUntouched(R"({"update": "qos/status", "value": )");
    expectUntouched(
        R"({"openconfig": {"openconfig-qos:qos": {"classifiers": {"classifier": [{}]}}}})");
}

}  // namespace
}  // namespace QosAgent
