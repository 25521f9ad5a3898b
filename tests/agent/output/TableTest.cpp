#include <gtest/gtest.h>

#include "agent/output/Table.h"
#include "tests/agent/support/TextDatabase.h"

namespace QosAgent {
namespace {

std::string tableOf(const std::string& classifiers, const Terminal& terminal = {}) {
    TextDatabase db;
    EXPECT_EQ(db.load(R"({"qos/openconfig/state/classifiers":{"classifier":)" + classifiers + "}}"),
              "");
    return stateTable(*Vex::entityCast<QosOc::State::ClassifiersDir>(db.database.stateTree().root),
                      terminal);
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

constexpr const char* kLongNames = R"({"edge-of-the-north-in":{"terms":{"term":{"voice":{
    "conditions":{"ipv4":{"dscpSet":[40,41,42,43,44,45,46]},"ipv6":{"dscp":1}},
    "actions":{"targetGroup":"expedited-forwarding"}}}}}})";

TEST(TableTest, givesNamesAllTheRoomTheyWantWhereThereIsNoTerminal) {
    EXPECT_EQ(tableOf(kLongNames),
              "CLASSIFIER            TYPE  TERM   MATCH                    TARGET GROUP\n"
              "edge-of-the-north-in  IPV4  voice  dscp 40,41,42,43,44,45,  expedited-forwarding\n"
              "                                        46\n"
              "                                   ipv6 dscp 1");
    const std::string name(10'000, 'n');
    EXPECT_NE(tableOf("{\"" + name + "\":{}}").find('\n' + name + "  IPV4"), std::string::npos);
}

TEST(TableTest, foldsNamesAndSetsWhereATerminalIsTooNarrow) {
    EXPECT_EQ(tableOf(kLongNames, {.columns = 64}),
              "CLASSIFIER       TYPE  TERM   MATCH             TARGET GROUP\n"
              "edge-of-the-     IPV4  voice  dscp 40,41,42,    expedited-\n"
              "north-in                           43,44,45,46  forwarding\n"
              "                              ipv6 dscp 1");
}

TEST(TableTest, leavesEachColumnEightCharacters) {
    EXPECT_EQ(tableOf(R"({"abcdefghijkl":{"terms":{"term":{"t":{"conditions":{"ipv6":{"dscp":63}}}
                      }}}})",
                      {.columns = 1}),
              "CLASSIFI  TYPE  TERM  MATCH     TARGET\n"
              "ER                              GROUP\n"
              "abcdefgh  IPV4  t     ipv6      -\n"
              "ijkl                      dscp\n"
              "                           63");
}

TEST(TableTest, foldsBetweenCharacters) {
    const std::string name = "\xc3\xa9\xc3\xa9\xc3\xa9\xc3\xa9\xc3\xa9\xc3\xa9\xc3\xa9\xc3\xa9";
    EXPECT_EQ(tableOf("{\"" + name + name + "\":{}}", {.columns = 1}),
              "CLASSIFI  TYPE  TERM  MATCH  TARGET\n"
              "ER                           GROUP\n" +
                  name + "  IPV4  -     -      -\n" + name);
}

TEST(TableTest, showsAllOfANameOfSpaces) {
    const std::string name(20, ' ');
    EXPECT_EQ(tableOf("{\"" + name + "x\":{}}", {.columns = 1}),
              "CLASSIFI  TYPE  TERM  MATCH  TARGET\n"
              "ER                           GROUP\n"
              "          IPV4  -     -      -\n"
              "\n"
              "    x");
}

TEST(TableTest, countsCharactersAndEscapesControls) {
    EXPECT_EQ(tableOf(R"({"é\n":{}})"),
              "CLASSIFIER  TYPE  TERM  MATCH  TARGET GROUP\n"
              "é\\n         IPV4  -     -      -");
}

}  // namespace
}  // namespace QosAgent
