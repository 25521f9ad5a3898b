#include <gtest/gtest.h>

#include <string>

#include "platform/Vex/Escape.h"

namespace Vex {
namespace {

using namespace std::string_view_literals;

std::string escaped(std::string_view text) {
    std::string out = "> ";
    appendEscaped(out, text);
    return out.substr(2);
}

TEST(EscapeTest, leavesPlainTextAsItIs) {
    EXPECT_EQ(escaped(" ~aZ09\"'%/"), " ~aZ09\"'%/");
    EXPECT_EQ(escaped("\x80\xC3\xA4\xFF"), "\x80\xC3\xA4\xFF");
    EXPECT_EQ(escaped(""), "");
}

TEST(EscapeTest, writesLettersForTheNamedControls) {
    EXPECT_EQ(escaped("\a\b\t\n\v\f\r\\"), R"(\a\b\t\n\v\f\r\\)");
}

TEST(EscapeTest, writesThreeOctalDigitsForTheOthers) {
    EXPECT_EQ(escaped("\0\6\16\37\177"sv), R"(\000\006\016\037\177)");
    EXPECT_EQ(escaped("\1"
                      "23"sv),
              R"(\00123)");
}

TEST(EscapeTest, makesEveryByteDifferentAndKeepsItOnOneLine) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        const std::string text = escaped(std::string(1, static_cast<char>(byte)));
        EXPECT_EQ(text.find('\n'), std::string::npos);
        EXPECT_EQ(all.find("|" + text + "|"), std::string::npos) << byte;
        all += "|" + text + "|";
    }
}

}  // namespace
}  // namespace Vex
