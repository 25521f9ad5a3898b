#include <gtest/gtest.h>

#include "agent/output/Table.h"
#include "tests/agent/support/TextDatabase.h"

namespace QosAgent {
namespace {

std::string tableOf(const std::string& classifiers) {
    TextDatabase db;
    EXPECT_EQ(db.load(R"({"qos/openconfig/state/classifiers":{"classifier":)" + classifiers + "}}"),
              "");
    return stateTable(*Vex::entityCast<QosOc::State::ClassifiersDir>(db.database.stateTree().root));
}

TEST(TableTest, hasARowForEachTermInOrder) {
    EXPECT_EQ(tableOf(R"({"voice":{"state":{"type":"IPV6"},"terms":{"term":{
        "t2":{"conditions":{"ipv6":{"dscp":46}},"actions":{"targetGroup":"gold"}},
        "t1":{"conditions":{"ipv4":{"dscp":1},"ipv6":{"dscpSet":[10,12]}}}}}},
        "data":{}})"),
              "CLASSIFIER  TYPE  TERM  MATCH        TARGET GROUP\n"
              "data        IPV4  -     -            -\n"
              "voice       IPV6  t1    ipv4 dscp 1  -\n"
              "                        dscp 10,12\n"
              "voice       IPV6  t2    dscp 46      gold");
}

TEST(TableTest, hasOnlyItsHeadWhenTheTreeIsEmpty) {
    EXPECT_EQ(tableOf("{}"), "CLASSIFIER  TYPE  TERM  MATCH  TARGET GROUP");
}

TEST(TableTest, goesOnInTheNextLineWithALongSet) {
    EXPECT_EQ(tableOf(R"({"C":{"terms":{"term":{"T":{"conditions":{"ipv4":
        {"dscpSet":[10,11,12,13,14,15,16,17,18]}}}}}}})"),
              "CLASSIFIER  TYPE  TERM  MATCH                    TARGET GROUP\n"
              "C           IPV4  T     dscp 10,11,12,13,14,15,  -\n"
              "                             16,17,18");
}

TEST(TableTest, countsCharactersAndEscapesControls) {
    EXPECT_EQ(tableOf(R"({"é\n":{}})"),
              "CLASSIFIER  TYPE  TERM  MATCH  TARGET GROUP\n"
              "é\\n         IPV4  -     -      -");
}

}  // namespace
}  // namespace QosAgent
