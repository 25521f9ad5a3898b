#include <gtest/gtest.h>

#include "tests/agent/support/Program.h"

namespace QosAgent {
namespace {

const char* const kGood = R"({"openconfig-qos:qos":{}})";
/// Says something that the agent does not carry.
const char* const kForeign =
    "{\"openconfig-qos:qos\":{\n\"queues\":{},\"scheduler-policies\":[1]}}";

/// `--check` and `--strict`.
class CheckTest : public ProgramTest {
protected:
    Ended check(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "--check");
        return run(arguments);
    }
};

TEST_F(CheckTest, saysNothingOfGoodDocumentsAndStartsNoPlugin) {
    const std::string state = file("state.json", R"({"qos/status":{"cmapTypeStatus":{}}})");
    EXPECT_EQ(check({"--plugin", "/nowhere.so", "--follow", "--machines", "--output", "entities",
                     state, file("c.json", kGood)}),
              (Ended{0, "", ""}));
}

TEST_F(CheckTest, reportsEveryFaultOfAStateDocument) {
    const std::string bad = file("bad.json",
                                 "{\"qos/status\":{\"x\":1,\"cmapTypeStatus\":{\"mapQoS\":{},\n"
                                 "\"mapQos\":{\"cmapStatus\":{\"a\":{\"cmapName\":\"b\"}}}}},\n"
                                 "\"qos\\u002fstate\":{},\n"
                                 "\"acl/config/cli\":[]}\n");
    EXPECT_EQ(check({bad}),
              (Ended{2, "",
                     bad + ":1:16: unknown member \"x\"\n" + bad +
                         ":1:40: unknown name \"mapQoS\", expected one of mapCopp, mapQos, "
                         "mapPbr\n" +
                         bad + ":2:41: does not agree with the key \"a\"\n" + bad +
                         ":3:1: no subtree is mounted at the path \"qos/state\", did you mean "
                         "\"qos/status\"?\n" +
                         bad + ":4:18: expected an object, found an array\n"}));
}

TEST_F(CheckTest, reportsEveryFaultOfAConfiguration) {
    const std::string bad =
        file("bad.json",
             "{\"openconfig-qos:qos\":{\"classifiers\":{\"classifier\":[\n"
             "{\"name\":\"a\",\"config\":{\"name\":\"a\",\"type\":\"ipv4\"}},\n"
             "{\"name\":\"b\",\"config\":{\"name\":\"c\"},\"terms\":{\"term\":[\n"
             "{\"id\":\"1\",\"config\":{\"id\":\"1\"},\"conditions\":{\"ipv4\":{\"config\":\n"
             "{\"dscp\":64,\"dscp-set\":[1,99,\"x\",1]}}},\n"
             "\"actions\":{\"config\":{\"target-group\":\"g\"}}}]}}]},\n"
             "\"interfaces\":{\"interface\":[{\"interface-id\":\"1\",\"config\":{\"interface-id\":"
             "\"1\"},\n"
             "\"input\":{\"classifiers\":{\"classifier\":[\n"
             "{\"type\":\"IPV4\",\"config\":{\"type\":\"IPV4\",\"name\":\"a\"}},\n"
             "{\"type\":\"IPV6\",\"config\":{\"type\":\"IPV6\",\"name\":\"b\"}}]}}}]}}}\n");
    EXPECT_EQ(
        check({bad}),
        (Ended{2, "",
               bad + ":2:41: unknown type \"ipv4\", expected one of IPV4, IPV6, MPLS, ETHERNET\n" +
                   bad + ":3:30: differs from the list key, which is \"b\"\n" + bad +
                   ":5:9: \"64\" is no DSCP, expected 0 to 63\n" + bad +
                   ":5:26: \"99\" is no DSCP, expected 0 to 63\n" + bad +
                   ":5:29: expected a number, found a string\n" + bad +
                   ":5:33: a second value 1\n" + bad +
                   ":6:37: no forwarding group \"g\" is configured\n" + bad +
                   ":10:47: the classifier \"b\" is of another type than its attachment\n"}));
}

TEST_F(CheckTest, reportsAtMostTwentyFaultsOfADocument) {
    std::string members;
    for (int i = 1; i <= 30; ++i)
        members.append(i == 1 ? "" : ",\n").append("\"m").append(std::to_string(i)).append("\":1");
    const std::string bad = file("bad.json", "{\"qos/status\":{\n" + members + "}}");
    std::string lines;
    for (int i = 1; i <= 20; ++i)
        lines += bad + ':' + std::to_string(i + 1) + ":1: unknown member \"m" + std::to_string(i) +
                 (i < 20 ? "\"\n" : "\" (no more than 20 faults of a document are reported)\n");
    const std::string other = file("other.json", "[]");
    EXPECT_EQ(check({bad, other}),
              (Ended{2, "", lines + other + ":1:1: expected an object, found an array\n"}));
}

TEST_F(CheckTest, goesOnAfterDocumentsThatCannotBeRead) {
    const std::string broken = file("broken.json", "{\n1}");
    const std::string bad = file("bad.json", "7");
    EXPECT_EQ(check({path("none.json"), broken, bad}),
              (Ended{2, "",
                     path("none.json") + ": No such file or directory\n" + broken +
                         ":2:1: expected a key or '}', found '1'\n" + bad +
                         ":1:1: expected an object, found a number\n"}));
}

TEST_F(CheckTest, warnsOfWhatIsNotCarriedAndOfStreams) {
    const std::string foreign = file("foreign.json", kForeign);
    EXPECT_EQ(check({foreign, "-"}),
              (Ended{0, "",
                     "-: warning: not checked: --check reads documents only\n" + foreign +
                         ":2:13: warning: passed over: scheduler-policies\n"}));
}

TEST_F(CheckTest, refusesToCheckNothing) {
    for (const std::vector<std::string>& inputs : {std::vector<std::string>{}, {"-"}})
        EXPECT_EQ(check(inputs), (Ended{2, "", "qos-agent: --check: no document is given\n"}));
}

TEST_F(CheckTest, refusesWhatIsNotCarriedWhenStrict) {
    const std::string foreign = file("foreign.json", kForeign);
    const std::string line =
        foreign + ":2:13: passed over: scheduler-policies (refused under --strict)\n";
    EXPECT_EQ(check({"--strict", foreign}), (Ended{2, "", line}));
    EXPECT_EQ(run({"--strict", foreign}), (Ended{2, "", line}));
    EXPECT_EQ(run({"--strict", file("good.json", kGood)}), (Ended{0, "{}\n", ""}));
}

TEST_F(CheckTest, refusesLinesThatWouldBeWarnedOfWhenStrict) {
    EXPECT_EQ(run({"--strict", "--keep-going", "--output", "none", "-"},
                  "{\"openconfig\":{\"openconfig-qos:qos\":{\"state\":{\"x\":1}}}}\n"
                  "{\"print\":\"database\"}\n"),
              (Ended{1,
                     "{\"qos/status\":{},\"qos/input/config/cli\":{},\"acl/config/cli\":{},"
                     "\"qos/openconfig/config/classifiers\":{},"
                     "\"qos/openconfig/state/classifiers\":{}}\n",
                     "-:1:38: passed over: state containers (refused under --strict)\n"}));
}

}  // namespace
}  // namespace QosAgent
