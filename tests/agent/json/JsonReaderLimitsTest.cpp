#include "tests/agent/json/JsonReaderTest.h"

namespace QosAgent {
namespace {

TEST(JsonReaderLimitsTest, takes64LevelsAndNoMore) {
    EXPECT_EQ(faultIn(nested(64)), kNoFault);
    EXPECT_EQ(faultIn(nested(65)), (Fault{64, "nested deeper than 64 levels"}));
    EXPECT_EQ(faultIn("[" + nested(63) + ", " + nested(64) + "]"),
              (Fault{129 + 63, "nested deeper than 64 levels"}));
}

TEST(JsonReaderLimitsTest, countsObjectsAndArraysAlikeAsLevels) {
    const Limits limits{.depth = 2};
    EXPECT_EQ(faultIn(R"({"a": [1], "b": {}})", limits), kNoFault);
    EXPECT_EQ(faultIn(R"({"a": [{}]})", limits), (Fault{7, "nested deeper than 2 levels"}));
    EXPECT_EQ(faultIn(R"([{"a": []}])", limits), (Fault{7, "nested deeper than 2 levels"}));
}

TEST(JsonReaderLimitsTest, withstandsDeepNesting) {
    EXPECT_EQ(faultIn(std::string(1'000'000, '[')), (Fault{64, "nested deeper than 64 levels"}));
}

TEST(JsonReaderLimitsTest, takesTextsOf64KiBAndNoMore) {
    EXPECT_EQ(decoded(quotedRun(65'536)).size(), 65'536u);
    EXPECT_EQ(faultIn("{" + quotedRun(65'536) + ": 1}"), kNoFault);
    EXPECT_EQ(faultIn("[1, " + quotedRun(65'537) + "]"),
              (Fault{4, "string longer than 65536 bytes"}));
    EXPECT_EQ(faultIn("{ " + quotedRun(65'537) + ": 1}"),
              (Fault{2, "key longer than 65536 bytes"}));
}

TEST(JsonReaderLimitsTest, measuresTextsDecoded) {
    const Limits limits{.textBytes = 2};
    EXPECT_EQ(faultIn(R"(["\u0041\n", "\u00e4"])", limits), kNoFault);
    EXPECT_EQ(faultIn(R"(["\u20ac"])", limits), (Fault{1, "string longer than 2 bytes"}));
    EXPECT_EQ(faultIn("12345", limits), kNoFault);
}

TEST(JsonReaderLimitsTest, takesADocumentUpToItsLimitAndNoMore) {
    const Limits limits{.documentBytes = 5, .lineBytes = 3};
    EXPECT_EQ(faultIn("[1,2]", limits), kNoFault);
    EXPECT_EQ(faultIn("[1,2] ", limits), (Fault{0, "text longer than 5 bytes"}));
}

TEST(JsonReaderLimitsTest, takesALineUpToItsLimitAndNoMore) {
    const Limits limits{.documentBytes = 3, .lineBytes = 5};
    EXPECT_EQ(faultOf(parseJsonLine("[1,2]", limits)), kNoFault);
    EXPECT_EQ(faultOf(parseJsonLine("[1,2] ", limits)), (Fault{0, "text longer than 5 bytes"}));
}

TEST(JsonReaderLimitsTest, takesLinesAsLongAsDocumentsByDefault) {
    EXPECT_EQ(Limits{}.lineBytes, std::size_t{256} << 20);
    EXPECT_EQ(Limits{}.lineBytes, Limits{}.documentBytes);
}

TEST(JsonReaderLimitsTest, refusesDocumentsOfMoreThan256MebibytesByDefault) {
    EXPECT_EQ(Limits{}.documentBytes, std::size_t{256} << 20);
    const std::string text((std::size_t{256} << 20) + 1, ' ');
    EXPECT_EQ(faultIn(text), (Fault{0, "text longer than 268435456 bytes"}));
}

}  // namespace
}  // namespace QosAgent
