#include <gtest/gtest.h>

#include "agent/openconfig/StatePrinter.h"
#include "tests/agent/support/TextDatabase.h"

namespace QosAgent {
namespace {

std::string printed(const std::string& classifiers) {
    TextDatabase db;
    EXPECT_EQ(db.load(R"({"qos/openconfig/state/classifiers":{"classifier":)" + classifiers + "}}"),
              "");
    std::string text;
    JsonWriter writer(text);
    writeOpenConfigState(
        writer, *Vex::entityCast<QosOc::State::ClassifiersDir>(db.database.stateTree().root));
    return text;
}

std::string stateOf(const std::string& list) {
    return R"({"openconfig-qos:qos":{"classifiers":{"classifier":[)" + list + "]}}}";
}

TEST(StatePrinterTest, printsAnEmptyTreeAsAnEmptyObject) {
    EXPECT_EQ(printed("{}"), "{}");
}

TEST(StatePrinterTest, printsListsInAscendingKeyOrder) {
    EXPECT_EQ(printed(R"({"b":{"terms":{"term":{"2":{},"10":{}}}},"a":{}})"),
              stateOf(R"({"name":"a","state":{"name":"a","type":"IPV4"}},)"
                      R"({"name":"b","state":{"name":"b","type":"IPV4"},"terms":{"term":[)"
                      R"({"id":"10","state":{"id":"10"}},{"id":"2","state":{"id":"2"}}]}})"));
}

TEST(StatePrinterTest, printsATermWithAllItHas) {
    EXPECT_EQ(printed(R"({"C":{"state":{"type":"IPV6"},"terms":{"term":{"T":{"stateId":"S",
        "conditions":{"ipv4":{"dscp":46},"ipv6":{"dscpSet":[255,1,1]}},
        "actions":{"targetGroup":"g"}}}}}})"),
              stateOf(R"({"name":"C","state":{"name":"C","type":"IPV6"},"terms":{"term":[)"
                      R"({"id":"T","state":{"id":"S"},"conditions":{"ipv4":{"state":{)"
                      R"("dscp":46}},"ipv6":{"state":{"dscp-set":[255,1,1]}}},)"
                      R"("actions":{"state":{"target-group":"g"}}}]}})"));
}

TEST(StatePrinterTest, leavesOutEmptyContainers) {
    EXPECT_EQ(printed(R"({"C":{"terms":{"term":{"T":{"conditions":{},"actions":{}}}}},
        "D":{"terms":{}}})"),
              stateOf(R"({"name":"C","state":{"name":"C","type":"IPV4"},"terms":{"term":[)"
                      R"({"id":"T","state":{"id":"T"}}]}},)"
                      R"({"name":"D","state":{"name":"D","type":"IPV4"}})"));
}

}  // namespace
}  // namespace QosAgent
