#include <gtest/gtest.h>

#include "agent/json/Excerpt.h"

namespace QosAgent {
namespace {

using std::string_literals::operator""s;

TEST(ExcerptTest, quotesAShortTextWhole) {
    EXPECT_EQ(excerpt("voice"), R"("voice")");
    EXPECT_EQ(excerpt(""), R"("")");
    EXPECT_EQ(excerpt("gr\xc3\xbc\xc3\x9f"), "\"gr\xc3\xbc\xc3\x9f\"");
}

TEST(ExcerptTest, escapesEveryControlCharacter) {
    EXPECT_EQ(excerpt("a\n\0\x1b\x7f"s), R"("a\n\u0000\u001b\u007f")");
    EXPECT_EQ(excerpt("\xc2\x80-\xc2\x9f-\xc2\xa0"), "\"\\u0080-\\u009f-\xc2\xa0\"");
}

TEST(ExcerptTest, cutsALongText) {
    EXPECT_EQ(excerpt("abcd", 4), R"("abcd")");
    EXPECT_EQ(excerpt("abcde", 4), R"("abcd"...)");
    EXPECT_EQ(excerpt(std::string(100, 'x')), '"' + std::string(60, 'x') + "\"...");
}

TEST(ExcerptTest, cutsBetweenCharacters) {
    EXPECT_EQ(excerpt("ab\xe2\x82\xac", 4), R"("ab"...)");
    EXPECT_EQ(excerpt("ab\xe2\x82\xac", 5), "\"ab\xe2\x82\xac\"");
    EXPECT_EQ(excerpt("\xe2\x82\xac", 2), R"(""...)");
}

TEST(ExcerptTest, describesAByte) {
    EXPECT_EQ(describeByte('x'), "'x'");
    EXPECT_EQ(describeByte(' '), "' '");
    EXPECT_EQ(describeByte('~'), "'~'");
    EXPECT_EQ(describeByte('\n'), "byte 0x0a");
    EXPECT_EQ(describeByte('\x7f'), "byte 0x7f");
    EXPECT_EQ(describeByte('\xff'), "byte 0xff");
}

TEST(ExcerptTest, showsAllOfAShortLineAroundAPlace) {
    const std::string line(160, 'x');
    for (const std::size_t offset : {0, 80, 160})
        EXPECT_EQ(excerptAround(line, offset), line);
    EXPECT_EQ(excerptAround("", 0), "");
}

TEST(ExcerptTest, showsAWindowOfALongLineAroundAPlace) {
    const std::string line = std::string(200, 'a') + '!' + std::string(200, 'b');
    EXPECT_EQ(excerptAround(line, 0), std::string(160, 'a') + "...");
    EXPECT_EQ(excerptAround(line, 200),
              "..." + std::string(60, 'a') + '!' + std::string(99, 'b') + "...");
    EXPECT_EQ(excerptAround(line, 401), "..." + std::string(160, 'b'));
}

TEST(ExcerptTest, cutsAroundAPlaceBetweenCharacters) {
    std::string line = "x";
    for (int i = 0; i < 200; ++i)
        line += "\xc3\xa9";
    const std::string shown = excerptAround(line, 200);
    EXPECT_TRUE(shown.starts_with("...\xc3\xa9")) << shown;
    EXPECT_TRUE(shown.ends_with("\xc3\xa9...")) << shown;
}

}  // namespace
}  // namespace QosAgent
