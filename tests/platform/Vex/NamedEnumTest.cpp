#include <gtest/gtest.h>

#include "platform/Vex/NamedEnum.h"
#include "tests/support/Harbour.h"

namespace Vex {
namespace {

using Harbour::Signal;

TEST(NamedEnumTest, hasATextForEveryValue) {
    EXPECT_EQ(enumText(Signal::clear), "clear");
    EXPECT_EQ(enumText(Signal::danger), "danger");
    EXPECT_EQ(enumText(Signal{3}), "3");
    EXPECT_EQ(enumText(Signal{255}), "255");
}

TEST(NamedEnumTest, hasNoNameForOtherValues) {
    EXPECT_EQ(nameOf(Harbour::kSignalNames, 1), "caution");
    EXPECT_EQ(nameOf(Harbour::kSignalNames, 3), "");
    EXPECT_EQ(nameOf({}, 0), "");
}

enum class Nameless : std::uint8_t { one };

TEST(NamedEnumTest, isToldByItsFunction) {
    EXPECT_TRUE(NamedEnum<Signal>);
    EXPECT_FALSE(NamedEnum<Nameless>);
    EXPECT_FALSE(NamedEnum<int>);
}

}  // namespace
}  // namespace Vex
