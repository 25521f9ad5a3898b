#include <gtest/gtest.h>

#include "agent/json/Visible.h"

namespace QosAgent {
namespace {

using std::string_literals::operator""s;

TEST(VisibleTest, leavesWhatCanBeSeen) {
    for (const char* text : {"", "voice 46", "a\\n", "gr\u00fc\u00df\u20ac", "\U0001f600",
                             "\u0646\u0627\u0645\u200c\u0647\u0627", "\u00a0", "\ufffd"})
        EXPECT_EQ(visible(text), text);
}

TEST(VisibleTest, escapesControlCharacters) {
    EXPECT_EQ(visible("a\0b\n\x1b[2J\x1f\x7f"s), R"(a\u0000b\u000a\u001b[2J\u001f\u007f)");
    EXPECT_EQ(visible("\u0080-\u009b2J-\u009f"), R"(\u0080-\u009b2J-\u009f)");
}

TEST(VisibleTest, escapesWhatTurnsTheDirectionOfText) {
    EXPECT_EQ(visible("\u202egpj.exe"), R"(\u202egpj.exe)");
    EXPECT_EQ(visible("\u061c\u200e\u200f\u202a\u202d\u2066\u2069"),
              R"(\u061c\u200e\u200f\u202a\u202d\u2066\u2069)");
}

TEST(VisibleTest, escapesWhatNobodySees) {
    EXPECT_EQ(visible("a\u200bb\u00ad\u2060\ufeff\u2028"), R"(a\u200bb\u00ad\u2060\ufeff\u2028)");
    EXPECT_EQ(visible("a\U000e0041\U000e007f"), R"(a\U000e0041\U000e007f)");
}

TEST(VisibleTest, leavesTheNeighboursOfWhatItEscapes) {
    for (const char* text :
         {" ",      "~",      "\u00a0", "\u00ac", "\u00ae", "\u061b",    "\u061d",
          "\u200a", "\u200c", "\u200d", "\u2010", "\u2027", "\u202f",    "\u205f",
          "\u2070", "\ufefe", "\uff00", "\ufff8", "\ufffc", "\U000e0080"})
        EXPECT_EQ(visible(text), text);
}

TEST(VisibleTest, keepsNamesApart) {
    EXPECT_EQ(visibleName("a\n"), R"(a\n)");
    EXPECT_EQ(visibleName(R"(a\n)"), R"(a\\n)");
    EXPECT_EQ(visibleName("\u202e"), R"(\u202e)");
    EXPECT_EQ(visibleName(R"(\u202e)"), R"(\\u202e)");
}

TEST(VisibleTest, escapesStrayBytesThatAreControlsInOtherEncodings) {
    EXPECT_EQ(visible("\x9b"
                      "2J\x80\xa0\xe9"),
              "\\x9b"
              "2J\\x80\xa0\xe9");
    EXPECT_EQ(visible("\xe2\x80"), "\xe2\\x80") << "cut off";
    EXPECT_EQ(visible("\xc1\x9b\xf5\x9b"), "\xc1\\x9b\xf5\\x9b") << "leads nothing";
    EXPECT_EQ(visible("\xc2"), "\xc2");
}

}  // namespace
}  // namespace QosAgent
