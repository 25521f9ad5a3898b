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

TEST(TableTest, hasARowForEachTermInNaturalOrder) {
    EXPECT_EQ(tableOf(R"({"voice":{"state":{"type":"IPV6"},"terms":{"term":{
        "t10":{"conditions":{"ipv6":{"dscp":46}},"actions":{"targetGroup":"gold"}},
        "t2":{"conditions":{"ipv4":{"dscp":1},"ipv6":{"dscpSet":[11,7]}}}}}},
        "data":{}})"),
              "CLASSIFIER  TYPE  TERM  MATCH                   TARGET GROUP\n"
              "data        IPV4  -     -                       -\n"
              "voice       IPV6  t2    ipv4 dscp 1; dscp 11,7  -\n"
              "voice       IPV6  t10   dscp 46(EF)             gold");
}

TEST(TableTest, saysThatTheTreeIsEmpty) {
    EXPECT_EQ(tableOf("{}"), "no classifier is published");
}

constexpr const char* kLongNames = R"({"edge-of-the-north-in":{"terms":{"term":{"voice":{
    "conditions":{"ipv4":{"dscpSet":[41,43,45,47,49,51,53,55,57]},"ipv6":{"dscp":1}},
    "actions":{"targetGroup":"expedited-forwarding"}}}}}})";

TEST(TableTest, foldsNothingWhereThereIsNoTerminal) {
    EXPECT_EQ(tableOf(kLongNames),
              "CLASSIFIER            TYPE  TERM   MATCH                                       "
              "  TARGET GROUP\n"
              "edge-of-the-north-in  IPV4  voice  dscp 41,43,45,47,49,51,53,55,57; ipv6 dscp 1"
              "  expedited-forwarding");
}

TEST(TableTest, foldsNothingThatATerminalHasRoomFor) {
    EXPECT_EQ(tableOf(kLongNames, {.columns = 104}), tableOf(kLongNames));
}

TEST(TableTest, alignsNoRowWithANameOfUnusualLength) {
    const std::string name(129, 'n');
    EXPECT_EQ(tableOf("{\"" + name + "\":{},\"C\":{}}"),
              "CLASSIFIER  TYPE  TERM  MATCH  TARGET GROUP\n"
              "C           IPV4  -     -      -\n" +
                  name + "  IPV4  -     -      -");
    EXPECT_TRUE(tableOf("{\"" + name.substr(1) + "\":{},\"C\":{}}")
                    .ends_with("\n" + name.substr(1) + "  IPV4  -     -      -"));
}

TEST(TableTest, foldsSetsBeforeNames) {
    EXPECT_EQ(tableOf(kLongNames, {.columns = 90}),
              "CLASSIFIER            TYPE  TERM   MATCH                              TARGET GROUP\n"
              "edge-of-the-north-in  IPV4  voice  dscp 41,43,45,47,49,51,53,55,57;   "
              "expedited-forwarding\n"
              "                                        ipv6 dscp 1");
}

TEST(TableTest, foldsNamesAndSetsWhereATerminalIsTooNarrow) {
    EXPECT_EQ(tableOf(kLongNames, {.columns = 64}),
              "CLASSIFIER       TYPE  TERM   MATCH             TARGET GROUP\n"
              "edge-of-the-     IPV4  voice  dscp 41,43,45,    expedited-\n"
              "north-in                           47,49,51,    forwarding\n"
              "                                   53,55,57;\n"
              "                                   ipv6 dscp 1");
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

TEST(TableTest, showsCharactersThatNobodySeesEscaped) {
    EXPECT_EQ(tableOf(R"({"a\u009b2J":{"terms":{"term":{"\u202ex\\":{}}}}})"),
              "CLASSIFIER  TYPE  TERM       MATCH  TARGET GROUP\n"
              "a\\u009b2J   IPV4  \\u202ex\\\\  -      -");
}

}  // namespace
}  // namespace QosAgent
