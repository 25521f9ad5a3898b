#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "agent/output/Table.h"
#include "agent/streams/Operations.h"
#include "platform/Vex/Trace.h"
#include "tests/agent/support/TextDatabase.h"

namespace QosAgent {
namespace {

class OperationsTest : public ::testing::Test {
protected:
    /// `@` marks where the line is refused.
    void expectRefused(std::string line, const std::string& message) {
        const std::size_t mark = line.find('@');
        ASSERT_NE(mark, std::string::npos) << line;
        line.erase(mark, 1);
        const std::string before = db.all();
        EXPECT_EQ(db.apply(line), std::to_string(mark + 1) + ": " + message) << line;
        EXPECT_EQ(db.all(), before) << line;
        EXPECT_EQ(recorder.take(), Changes{}) << line;
    }

    TextDatabase db;
    ChangeRecorder recorder{db.database};
};

TEST_F(OperationsTest, passesOverCommentsAndWhiteSpace) {
    for (const char* line : {"", " \t ", "# {", "#", "\r"})
        EXPECT_EQ(db.apply(line), "") << line;
    expectRefused(" @# late", "expected a value, found '#'");
}

TEST_F(OperationsTest, refusesWhatIsNoOperation) {
    expectRefused("@[]", "expected an object, found an array");
    expectRefused("  @{}",
                  "no operation, expected one of update, replace, delete, touch, openconfig, "
                  "configure, print, echo, restart, follow");
    expectRefused(R"({@"updat":"qos/status"})",
                  R"(unknown operation "updat", did you mean "update"?)");
    expectRefused(R"({"update":"qos/status","value":{},@"x":1})", R"(unknown operation "x")");
    expectRefused(R"({"delete":"qos/status",@"touch":"qos/status"})",
                  "a second operation in one line");
    expectRefused(R"(@{"update":"qos/status"})", R"(no value for the operation "update")");
    expectRefused(R"({"echo":"a"} @{})", "expected the end of the text, found '{'");
}

TEST_F(OperationsTest, tellsHowToGiveADocument) {
    const std::string hint = "; a document is an INPUT of its own, FILE.json or /dev/stdin";
    for (const std::string name : {"openconfig-qos:qos", "qos", "qos/status"})
        expectRefused("{@\"" + name + "\":{}}", "unknown operation \"" + name + '"' + hint);
    expectRefused("{ @", "expected a key or '}', found the end of the text" + hint);
    expectRefused(R"({"openconfig-qos:qos": {@)",
                  "expected a key or '}', found the end of the text" + hint);
    expectRefused(R"({"delete":@)", "expected a value, found the end of the text");
}

TEST_F(OperationsTest, refusesAValueWhereNoneBelongs) {
    for (const char* verb : {"delete", "touch", "openconfig", "print", "echo", "restart", "follow"})
        expectRefused(std::string("{\"") + verb + R"(":"a",@"value":1})",
                      std::string("the operation \"") + verb + "\" takes no value");
}

TEST_F(OperationsTest, refusesPathsAtTheirBeginning) {
    expectRefused(R"({"update":@"qos/status/x","value":{}})", R"(unknown member "x" in the path)");
    expectRefused(R"({"value":{},"replace": @"acl"})",
                  R"(no subtree is mounted at the path "acl")");
    expectRefused(R"({"delete":@7})", "expected a path, found a number");
    expectRefused(R"({"touch":@"qos/status/cmapTypeStatus/1"})",
                  R"("1" must be written by its name "mapQos" (in the path))");
}

TEST_F(OperationsTest, refusesTheStateTree) {
    const std::string refused = "only the plug-in may change the state tree";
    const std::string tree = "qos/openconfig/state/classifiers";
    expectRefused(R"({"update":@")" + tree + R"(","value":{}})", refused);
    expectRefused(R"({"replace":@")" + tree + R"(/classifier/C","value":{}})", refused);
    expectRefused(R"({"delete":@")" + tree + R"(/classifier/C"})", refused);
    expectRefused(R"({"touch":@")" + tree + R"(/classifier/C"})", refused);
}

TEST_F(OperationsTest, refusesValuesWhereTheyAreWrong) {
    expectRefused(R"({"update":"qos/status","value":{"cmapTypeStatus":{"mapQos":{"cmapStatus":)"
                  R"({"a":{},"b":{"match":{"matchCos":@1}}}}}}})",
                  "expected a string, found a number");
    expectRefused(R"({"update":"qos/status/cmapTypeStatus/mapQos/cmapStatus/a/match/matchCos",)"
                  R"("value":@null})",
                  "expected a string, found null");
    expectRefused(R"({"replace":"qos/status","value":@null})", "expected an object, found null");
    expectRefused(R"({"update":"acl/config/cli/aclTypeConfig/ipv4/aclConfig/a",)"
                  R"("value":{"aclType":@"mac"}})",
                  R"(does not agree with the key "ipv4")");
    expectRefused(R"({"update":"acl/config/cli/aclTypeConfig/ipv4/aclConfig/a/aclName",)"
                  R"("value":@"b"})",
                  R"(does not agree with the key "a")");
    expectRefused(R"({"update":"qos/openconfig/config/classifiers/classifier/C/config",)"
                  R"("value":{"name":@"D"}})",
                  R"(does not agree with the key "C")");
}

TEST_F(OperationsTest, refusesToDeleteOrTouchWhatIsAlwaysThere) {
    const std::string acl = "acl/config/cli/aclTypeConfig/ipv4/aclConfig/a";
    const std::string pmap = "qos/status/pmapTypeStatus/mapQos/pmapStatus/p";
    const std::string term = "qos/openconfig/config/classifiers/classifier/C/terms/term/T";
    const std::vector<std::pair<std::string, std::string>> fixed{
        {"qos/status", "the root of a subtree"},
        {"qos/status/pmapTypeStatus", "a whole collection"},
        {pmap + "/classes/c/action", "a whole collection"},
        {pmap + "/version", "a member that is always there"},
        {pmap + "/pmapName", "a member that repeats a key"},
        {acl + "/aclType", "a member that repeats a key"},
        {term + "/id", "a member that repeats a key"},
        {term + "/stateId", "a member that is always there"},
        {term + "/actions/targetGroup", "a member that is always there"},
        {term + "/conditions/ipv4/dscpSet", "a member that is always there"},
        {acl + "/aclSubConfig/ipRuleById/1/filter/dscpValue", "a member that is always there"},
    };
    for (const auto& [path, what] : fixed) {
        expectRefused(R"({"delete":@")" + path + "\"}", what + " cannot be deleted");
        expectRefused(R"({"touch":@")" + path + "\"}", what + " cannot be touched");
    }
    expectRefused(R"({"delete":@")" + term + "/conditions/ipv4\"}",
                  "a member that is always there cannot be deleted");
}

TEST_F(OperationsTest, printsOneCompactLine) {
    ASSERT_EQ(db.load(R"({"qos/openconfig/state/classifiers":{"classifier":{"C":{}}}})"), "");
    for (const char* what : {"state", "openconfig", "machines", "database"})
        EXPECT_EQ(db.apply(std::string(R"({"print":")") + what + "\"}"), "");
    EXPECT_EQ(db.out.text(), R"({"classifier":{"C":{"state":{"name":"C","type":"IPV4"}}}})"
                             "\n"
                             R"({"openconfig-qos:qos":{"classifiers":{"classifier":[{"name":"C",)"
                             R"("state":{"name":"C","type":"IPV4"}}]}}})"
                             "\n[]\n" +
                                 db.all() + "\n");
}

TEST_F(OperationsTest, printsTheTableAndTheEntitiesOverSeveralLines) {
    EXPECT_EQ(db.apply(R"({"print":"entities"})"), "");
    EXPECT_EQ(db.out.text(),
              "{\n  \"qos/status\": {},\n  \"qos/input/config/cli\": {},\n"
              "  \"acl/config/cli\": {},\n  \"qos/openconfig/config/classifiers\": {},\n"
              "  \"qos/openconfig/state/classifiers\": {}\n}\n");
    const auto tree = Vex::entityCast<QosOc::State::ClassifiersDir>(db.database.stateTree().root);
    tree->classifierIs("edge")->stateIs({"edge", QosOc::Classifier::Type::IPV4});
    EXPECT_EQ(db.apply(R"({"print":"table"})"), "");
    EXPECT_THAT(db.out.text(), ::testing::EndsWith("}\n" + stateTable(*tree) + "\n"));
}

TEST_F(OperationsTest, turnsFollowingOnAndOff) {
    EXPECT_EQ(db.apply(R"({"follow":true})"), "");
    EXPECT_EQ(db.follows, true);
    EXPECT_EQ(db.apply(R"({"follow":false})"), "");
    EXPECT_EQ(db.follows, false);
    expectRefused(R"({"follow":@"yes"})", "expected true or false, found a string");
}

TEST_F(OperationsTest, tellsWhichLinesMayChangeSomething) {
    for (const char* line : {R"({"print":"state"})", R"({"echo":"a"})", R"({"follow":true})", "# x",
                             R"({"updat":1})"}) {
        db.apply(line);
        EXPECT_FALSE(db.operations.mayChange()) << line;
    }
    for (const char* line : {R"({"update":"qos/status","value":{}})",
                             R"({"delete":"qos/status/cmapTypeStatus/mapQos/cmapStatus/a"})",
                             R"({"openconfig":{"openconfig-qos:qos":{}}})"}) {
        EXPECT_EQ(db.apply(line), "");
        EXPECT_TRUE(db.operations.mayChange()) << line;
    }
}

TEST_F(OperationsTest, refusesToPrintAnythingElse) {
    expectRefused(R"({"print":@"x"})",
                  R"(cannot print "x", expected one of state, database, openconfig, )"
                  "configuration, machines, table, entities, differences");
    expectRefused(R"({"print":@{}})", R"(nothing to print, expected "explain")");
    expectRefused(R"({"print":{@"x":{}}})", R"(cannot print "x", expected "explain")");
    expectRefused(R"({"print":{"explain":{"classifier":"c"},@"x":1}})",
                  R"(cannot print "x", expected "explain")");
    expectRefused(R"({"print":{"explain":@"c"}})", "expected an object, found a string");
    expectRefused(R"({"print":{"explain":{"classifier":@""}}})", "an empty name");
    expectRefused(R"({"print":@null})", "expected a string, found null");
}

TEST_F(OperationsTest, printsExplanationsAndDifferences) {
    ASSERT_EQ(db.update("qos/openconfig/config/classifiers/classifier/C/terms/term/T", "{}"), "");
    EXPECT_EQ(db.apply(R"({"print":{"explain":{"classifier":"C","term":"U"}}})"), "");
    EXPECT_EQ(db.apply(R"({"print":{"explain":{"classifier":"C"}}})"), "");
    EXPECT_EQ(db.apply(R"({"print":"differences"})"), "");
    const std::string findings = R"("findings":["not-in-state","no-class-map","no-access-list"]}},)"
                                 R"("findings":["not-in-state"]})";
    EXPECT_EQ(db.out.text(), R"({"classifier":"C","findings":["not-in-state"]})"
                             "\n"
                             R"({"classifier":"C","terms":{"T":{"configured":{},)" +
                                 findings +
                                 "\n"
                                 R"({"C":{"findings":["not-in-state"],"terms":{"T":{"findings":)"
                                 R"(["not-in-state","no-class-map","no-access-list"]}}}})"
                                 "\n");
}

TEST_F(OperationsTest, echoesToBothOutputs) {
    std::vector<std::string> traced;
    Vex::traceSinkIs([&](std::string_view line) { traced.emplace_back(line); });
    EXPECT_EQ(db.apply(R"({"echo":"a\\b\n\u0001\u007fé"})"), "");
    Vex::traceSinkIs(nullptr);
    EXPECT_EQ(db.out.text(), "# a\\\\b\\n\\001\\177é\n");
    EXPECT_EQ(traced, std::vector<std::string>{"# a\\\\b\\n\\001\\177é"});
    expectRefused(R"({"echo":@1})", "expected a string, found a number");
}

TEST_F(OperationsTest, refusesToRestartWhatIsNotThere) {
    expectRefused(R"({"restart":@"Other"})", R"(no plug-in is called "Other")");
    expectRefused(R"({"restart":@{}})", "expected a string, found an object");
}

}  // namespace
}  // namespace QosAgent
