#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "agent/database/ChangeReport.h"
#include "tests/agent/support/MemberPaths.h"
#include "tests/agent/support/TextDatabase.h"

namespace QosAgent {
namespace {

using ReportLines = std::vector<std::string>;

const std::string kReportedGroups = "qos/input/config/cli/forwardingGroupNameToTcMap";
const std::string kReportedClassMaps = "qos/status/cmapTypeStatus/mapQos/cmapStatus";
const std::string kReportedPolicyMap = "qos/status/pmapTypeStatus/mapQos/pmapStatus/p";
const std::string kReportedLists = "acl/config/cli/aclTypeConfig/ipv4/aclConfig";
const std::string kReportedTerms = "qos/openconfig/config/classifiers/classifier/C/terms/term";

/// Notes what an editor reports, and holds it against what is there before and after.
class ChangeReportTest : public ::testing::Test, private InputChanges::Listener {
protected:
    ChangeReportTest() { db.database.inputChanges().listenerAdd(*this); }
    ~ChangeReportTest() override { db.database.inputChanges().listenerDel(*this); }

    void given(const std::string& line) { ASSERT_EQ(db.apply(line), ""); }
    /// What the line reports, `KIND PATH` each.
    ReportLines reportsOf(const std::string& line) {
        reports_.clear();
        created_.clear();
        removed_.clear();
        const std::set<std::string> before = memberPaths(db.database);
        EXPECT_EQ(db.apply(line), "");
        expectReported(before, memberPaths(db.database));
        return reports_;
    }

    TextDatabase db;

private:
    void inputChanged(InputChanges::Kind kind, std::string_view path) override {
        static constexpr const char* kNames[] = {"created ", "changed ", "removed "};
        reports_.push_back(kNames[static_cast<int>(kind)] + std::string(path));
        if (kind == InputChanges::Kind::created) created_.emplace(path);
        if (kind == InputChanges::Kind::removed) removed_.emplace(path);
    }
    /// Whether the path or one above it is among the paths.
    static bool covers(const std::set<std::string>& paths, std::string path) {
        while (!paths.contains(path)) {
            const std::size_t slash = path.rfind('/');
            if (slash == std::string::npos) return false;
            path.resize(slash);
        }
        return true;
    }
    void expectReported(const std::set<std::string>& before, const std::set<std::string>& after) {
        for (const std::string& path : after)
            EXPECT_TRUE(before.contains(path) || covers(created_, path)) << path;
        for (const std::string& path : before)
            EXPECT_TRUE(after.contains(path) || covers(removed_, path)) << path;
        for (const std::string& path : created_)
            EXPECT_TRUE(after.contains(path)) << path;
        for (const std::string& path : removed_)
            EXPECT_TRUE(!after.contains(path) || covers(created_, path)) << path;
    }

    ReportLines reports_;
    std::set<std::string> created_;
    std::set<std::string> removed_;
};

TEST_F(ChangeReportTest, namesWhatIsCreatedChangedAndRemoved) {
    given(R"({"update":")" + kReportedGroups + R"(","value":{"tc":{"a":1}}})");
    EXPECT_EQ(reportsOf(R"({"update":")" + kReportedGroups + R"(/tc/b","value":2})"),
              ReportLines{"created " + kReportedGroups + "/tc/b"});
    EXPECT_EQ(reportsOf(R"({"update":")" + kReportedGroups + R"(/tc/a","value":3})"),
              ReportLines{"changed " + kReportedGroups + "/tc/a"});
    EXPECT_EQ(reportsOf(R"({"delete":")" + kReportedGroups + R"(/tc/a"})"),
              ReportLines{"removed " + kReportedGroups + "/tc/a"});
    EXPECT_EQ(reportsOf(R"({"delete":")" + kReportedGroups + "\"}"),
              ReportLines{"removed " + kReportedGroups});
}

TEST_F(ChangeReportTest, saysNothingOfWhatStays) {
    given(R"({"update":")" + kReportedGroups + R"(","value":{"tc":{"a":1}}})");
    EXPECT_EQ(reportsOf(R"({"update":")" + kReportedGroups + R"(/tc/a","value":1})"),
              ReportLines{});
    EXPECT_EQ(reportsOf(R"({"delete":")" + kReportedGroups + R"(/tc/none"})"), ReportLines{});
    EXPECT_EQ(reportsOf(R"({"touch":")" + kReportedGroups + R"(/tc/a"})"), ReportLines{});
}

TEST_F(ChangeReportTest, escapesKeysAsPathsDo) {
    EXPECT_EQ(reportsOf(R"({"update":")" + kReportedClassMaps + R"(/a~1b~0c","value":{}})").front(),
              "created " + kReportedClassMaps + "/a~1b~0c");
    EXPECT_EQ(reportsOf(R"({"delete":")" + kReportedClassMaps + R"(/a~1b~0c"})"),
              ReportLines{"removed " + kReportedClassMaps + "/a~1b~0c"});
}

TEST_F(ChangeReportTest, namesTheOptionalPartsOfAValue) {
    given(R"({"update":")" + kReportedTerms + R"(/T","value":{"conditions":{"ipv4":{"dscp":1}}}})");
    const ReportLines reports = reportsOf(
        R"({"replace":")" + kReportedTerms +
        R"(/T","value":{"conditions":{"ipv6":{"dscp":2}},"actions":{"targetGroup":"g"}}})");
    const std::set<std::string> said(reports.begin(), reports.end());
    EXPECT_TRUE(said.contains("removed " + kReportedTerms + "/T/conditions/ipv4/dscp") ||
                said.contains("removed " + kReportedTerms + "/T"));
}

TEST_F(ChangeReportTest, coversWhateverOperationsDoToMembers) {
    for (const std::string& line : {
             R"({"update":")" + kReportedClassMaps +
                 R"(/voice","value":{"match":{"matchIpAccessGroup":"x"}}})",
             R"({"update":")" + kReportedClassMaps + R"(/voice/match/matchCos","value":"5"})",
             R"({"replace":")" + kReportedClassMaps +
                 R"(/voice","value":{"match":{"matchDscp":"1"}}})",
             R"({"replace":")" + kReportedClassMaps + R"(","value":{"other":{}}})",
             R"({"update":")" + kReportedPolicyMap +
                 R"(","value":{"classes":{"c":{"action":{"4":1}}}}})",
             R"({"update":")" + kReportedPolicyMap +
                 R"(","value":{"classes":{"d":{}},"version":2}})",
             R"({"replace":")" + kReportedPolicyMap + R"(/classes/c","value":{"action":{"5":1}}})",
             R"({"delete":")" + kReportedPolicyMap + R"(/classes/c/action/5"})",
             R"({"update":")" + kReportedLists +
                 R"(/l","value":{"aclSubConfig":{"ipRuleById":)"
                 R"({"7":{"filter":{"dscpValue":1}}},"ruleIdBySequence":{"10":7}}}})",
             R"({"update":")" + kReportedLists + R"(/l","value":null})",
             R"({"update":")" + kReportedLists + R"(/l","value":{"aclSubConfig":{}}})",
             R"({"replace":")" + kReportedLists + R"(/l/aclSubConfig","value":null})",
             R"({"update":")" + kReportedTerms +
                 R"(/T","value":{"conditions":{"ipv4":{"dscp":1}}}})",
             R"({"update":")" + kReportedTerms + R"(/T/actions","value":{"targetGroup":"g"}})",
             R"({"update":")" + kReportedTerms + R"(/T","value":{"actions":null}})",
             R"({"replace":")" + kReportedTerms + R"(","value":{"U":{}}})",
             std::string(R"({"replace":"qos/status","value":{}})"),
             std::string(R"({"replace":"acl/config/cli","value":{}})"),
         }) {
        SCOPED_TRACE(line);
        EXPECT_NE(reportsOf(line), ReportLines{});
    }
}

}  // namespace
}  // namespace QosAgent
