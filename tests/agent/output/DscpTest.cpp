#include <gtest/gtest.h>

#include <vector>

#include "agent/output/Dscp.h"

namespace QosAgent {
namespace {

std::string textOf(const std::vector<std::uint8_t>& values) {
    return dscpText(values);
}

TEST(DscpTest, isEmptyForNoValues) {
    EXPECT_EQ(textOf({}), "");
}

TEST(DscpTest, namesTheCodepointsThatHaveUsualNames) {
    EXPECT_EQ(textOf({0, 8, 16, 24, 32, 40, 48, 56}),
              "0(CS0),8(CS1),16(CS2),24(CS3),32(CS4),40(CS5),48(CS6),56(CS7)");
    EXPECT_EQ(textOf({10, 12, 14, 18, 20, 22}),
              "10(AF11),12(AF12),14(AF13),18(AF21),20(AF22),22(AF23)");
    EXPECT_EQ(textOf({26, 28, 30, 34, 36, 38}),
              "26(AF31),28(AF32),30(AF33),34(AF41),36(AF42),38(AF43)");
    EXPECT_EQ(textOf({46, 45, 1, 255}), "46(EF),45,1,255");
}

TEST(DscpTest, joinsThreeValuesInARowToARange) {
    EXPECT_EQ(textOf({8, 9, 10, 11, 12, 13, 14, 15}), "8-15");
    EXPECT_EQ(textOf({1, 2, 3}), "1-3");
    EXPECT_EQ(textOf({1, 2}), "1,2");
    EXPECT_EQ(textOf({46, 1, 2, 3, 5, 6, 7, 9, 254, 255}), "46(EF),1-3,5-7,9,254,255");
}

TEST(DscpTest, keepsTheOrderAndWhatIsThereTwice) {
    EXPECT_EQ(textOf({46, 40, 40}), "46(EF),40(CS5),40(CS5)");
    EXPECT_EQ(textOf({3, 2, 1}), "3,2,1");
    EXPECT_EQ(textOf({1, 2, 3, 3, 4, 5}), "1-3,3-5");
}

}  // namespace
}  // namespace QosAgent
