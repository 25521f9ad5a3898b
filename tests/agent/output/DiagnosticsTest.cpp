#include <gtest/gtest.h>

#include "agent/output/Diagnostics.h"

namespace QosAgent {
namespace {

TEST(DiagnosticsTest, namesFileAndPlaceBeforeTheMessage) {
    EXPECT_EQ(refusal("f", "is bad").line(), "f: is bad");
    EXPECT_EQ(refusal("f", TextPlace{2, 7}, "is bad").line(), "f:2:7: is bad");
    EXPECT_EQ(refusal("f", "{\n 1}", Fault{3, "is bad"}).line(), "f:2:2: is bad");
    EXPECT_EQ(warning("f", {2, 7}, "is odd").line(), "f:2:7: warning: is odd");
}

TEST(DiagnosticsTest, stayOnOneLine) {
    EXPECT_EQ(refusal("f\n", "\x1b[1m\x7f").line(), "f\\u000a: \\u001b[1m\\u007f");
}

TEST(DiagnosticsTest, paintOnlyWhatStandsBeforeTheMessage) {
    EXPECT_EQ(refusal("f", "is bad").line(true), "\033[1;31mf:\033[0m is bad");
    EXPECT_EQ(warning("f", {2, 7}, "is odd").line(true),
              "\033[1mf:2:7:\033[0m \033[1;35mwarning:\033[0m is odd");
}

}  // namespace
}  // namespace QosAgent
