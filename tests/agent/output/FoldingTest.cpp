#include <gtest/gtest.h>

#include "agent/output/Folding.h"

namespace QosAgent {
namespace {

using Lines = std::vector<std::string>;

TEST(FoldingTest, countsCharacters) {
    EXPECT_EQ(widthOf(""), 0u);
    EXPECT_EQ(widthOf("gr\xC3\xBC\xC3\x9F"), 4u);
}

TEST(FoldingTest, breaksBehindSigns) {
    EXPECT_EQ(folded("one two three", 20, 2, " "), (Lines{"one two three"}));
    EXPECT_EQ(folded("one two three", 8, 2, " "), (Lines{"one two ", "  three"}));
    EXPECT_EQ(folded("1,2,3", 4, 0, ","), (Lines{"1,2,", "3"}));
}

TEST(FoldingTest, breaksWordsThatAreTooLong) {
    EXPECT_EQ(folded("abcdefg", 4, 1, " "), (Lines{"abcd", " efg"}));
    EXPECT_EQ(folded("\xC3\xBC\xC3\xBC\xC3\xBC", 2, 0, " "),
              (Lines{"\xC3\xBC\xC3\xBC", "\xC3\xBC"}));
}

TEST(FoldingTest, indentsByHalfTheWidthAtMost) {
    EXPECT_EQ(folded("abcdef", 4, 9, " "), (Lines{"abcd", "  ef"}));
}

}  // namespace
}  // namespace QosAgent
