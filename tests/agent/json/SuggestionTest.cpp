#include <gtest/gtest.h>

#include "agent/json/Suggestion.h"

namespace QosAgent {
namespace {

constexpr std::string_view kNames[] = {"update", "replace", "delete", "dscp", "tc"};

TEST(SuggestionTest, takesALetterTooFewTooManyWrongOrSwappedForASlip) {
    for (const char* slip : {"updat", "pdate", "updatee", "uppdate", "updade", "udpate"})
        EXPECT_EQ(suggestion(slip, kNames), R"(, did you mean "update"?)") << slip;
}

TEST(SuggestionTest, takesAnotherCaseForNoSlipAtAll) {
    EXPECT_EQ(suggestion("UPDATE", kNames), R"(, did you mean "update"?)");
    EXPECT_EQ(suggestion("TC", kNames), R"(, did you mean "tc"?)");
}

TEST(SuggestionTest, allowsTwoSlipsInAWordOfSixLetters) {
    EXPECT_EQ(suggestion("repalec", kNames), R"(, did you mean "replace"?)");
    EXPECT_EQ(suggestion("dlet", kNames), "");
    EXPECT_EQ(suggestion("uxxxte", kNames), "");
}

TEST(SuggestionTest, allowsNoSlipInAWordOfTwoLetters) {
    EXPECT_EQ(suggestion("tx", kNames), "");
    EXPECT_EQ(suggestion("", kNames), "");
    EXPECT_EQ(suggestion("dsc", kNames), R"(, did you mean "dscp"?)");
}

TEST(SuggestionTest, findsTheNearestOfSeveral) {
    constexpr std::string_view near[] = {"targetXX", "targetsX", "targets", "targete"};
    EXPECT_EQ(suggestion("target", near), R"(, did you mean "targets"?)");
    EXPECT_EQ(suggestion("targete", near), R"(, did you mean "targete"?)");
}

TEST(SuggestionTest, findsNothingAmongNoNames) {
    EXPECT_EQ(suggestion("update", {}), "");
}

TEST(SuggestionTest, isQuickToGiveUpALongWord) {
    EXPECT_EQ(suggestion(std::string(1 << 20, 'u'), kNames), "");
}

}  // namespace
}  // namespace QosAgent
