#include <gtest/gtest.h>

#include <limits>
#include <sstream>
#include <unordered_set>

#include "platform/Ovk/UniqueId.h"

namespace Ovk {
namespace {

constexpr UniqueId kGreatest{std::numeric_limits<std::uint64_t>::max()};

TEST(UniqueIdTest, isZeroByDefault) {
    EXPECT_EQ(UniqueId(), UniqueId{0});
}

TEST(UniqueIdTest, isOrderedUnsigned) {
    EXPECT_LT(UniqueId{1}, UniqueId{2});
    EXPECT_LT(UniqueId{1}, kGreatest);
}

TEST(UniqueIdTest, isWrittenAsADecimalNumber) {
    std::ostringstream out;
    out << kGreatest;
    EXPECT_EQ(out.str(), "18446744073709551615");
}

TEST(UniqueIdTest, hashesByValueAndSeed) {
    EXPECT_EQ(UniqueId{5}.hash(1), UniqueId{5}.hash(1));
    EXPECT_NE(UniqueId{5}.hash(1), UniqueId{6}.hash(1));
    EXPECT_NE(UniqueId{5}.hash(1), UniqueId{5}.hash(2));
}

TEST(UniqueIdTest, spreadsTheLowestBitsOfItsHash) {
    for (const unsigned shift : {0U, 8U, 16U}) {
        std::unordered_set<std::uint32_t> lowBits;
        for (std::uint64_t i = 0; i < 1024; ++i)
            lowBits.insert(UniqueId{i << shift}.hash(0) & 0x3FF);
        EXPECT_GT(lowBits.size(), 512u) << "ids that are " << (1U << shift) << " apart";
    }
}

}  // namespace
}  // namespace Ovk
