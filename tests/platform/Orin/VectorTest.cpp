#include <gtest/gtest.h>

#include <cstdint>
#include <new>
#include <utility>

#include "platform/Orin/Vector.h"
#include "tests/support/Allocations.h"
#include "tests/support/Printers.h"

namespace Orin {
namespace {

using Bytes = Vector<std::uint8_t>;

/// The numbers from 0 to `count` - 1.
template <class T>
Vector<T> counted(std::size_t count) {
    Vector<T> result;
    for (std::size_t i = 0; i < count; ++i)
        result.push(static_cast<T>(i));
    return result;
}

TEST(VectorTest, beginsEmpty) {
    const Bytes bytes{};
    EXPECT_TRUE(bytes.empty());
    EXPECT_EQ(bytes.size(), 0u);
    EXPECT_EQ(bytes.begin(), bytes.end());
}

TEST(VectorTest, keepsEightBytesWithoutAllocating) {
    const std::size_t before = TestSupport::allocations();
    const Bytes bytes{1, 2, 3, 4, 5, 6, 7, 8};
    const Bytes copy = bytes;
    EXPECT_EQ(TestSupport::allocations(), before);
    EXPECT_EQ(copy, bytes);
}

TEST(VectorTest, growsBeyondItsOwnRoom) {
    const auto bytes = counted<std::uint8_t>(200);
    ASSERT_EQ(bytes.size(), 200u);
    for (std::size_t i = 0; i < 200; ++i)
        EXPECT_EQ(bytes[i], i);
}

TEST(VectorTest, holdsValuesWiderThanItsOwnRoom) {
    struct Wide {
        std::uint64_t a;
        std::uint64_t b;
        bool operator==(const Wide&) const = default;
    };
    EXPECT_EQ(Vector<Wide>::kInline, 0u);
    Vector<Wide> wide;
    const std::size_t before = TestSupport::allocations();
    wide.push({1, 2});
    wide.push({3, 4});
    EXPECT_EQ(TestSupport::allocations() - before, 2u) << "no more room than is asked for";
    const Vector<Wide> copy = wide;
    EXPECT_EQ(copy.size(), 2u);
    EXPECT_TRUE((copy[1] == Wide{3, 4}));
}

TEST(VectorTest, makesRoomForValuesThatAreWrittenInPlace) {
    Vector<std::uint8_t> bytes{7, 8};
    std::uint8_t* end = bytes.roomFor(20);
    EXPECT_TRUE(bytes.empty());
    for (std::uint8_t value = 0; value < 20; ++value)
        *end++ = value;
    bytes.endIs(end);
    EXPECT_EQ(bytes, counted<std::uint8_t>(20));
}

TEST(VectorTest, allocatesNothingWhereThereIsRoomAlready) {
    Vector<std::uint8_t> bytes;
    const std::size_t before = TestSupport::allocations();
    bytes.endIs(bytes.roomFor(8) + 8);
    EXPECT_EQ(TestSupport::allocations(), before);
    EXPECT_EQ(bytes.size(), 8u);
}

TEST(VectorTest, allocatesSeldomWhileItGrows) {
    const std::size_t before = TestSupport::allocations();
    const auto bytes = counted<std::uint8_t>(200);
    EXPECT_EQ(bytes.size(), 200u);
    EXPECT_EQ(TestSupport::allocations() - before, 5u) << "16, 32, 64, 128, 256";
}

TEST(VectorTest, takesAValueOfItsOwnWhileItGrows) {
    auto bytes = counted<std::uint8_t>(8);
    bytes.push(bytes[3]);
    EXPECT_EQ(bytes, (Bytes{0, 1, 2, 3, 4, 5, 6, 7, 3}));
}

TEST(VectorTest, comparesValuesWhereverTheyLie) {
    auto shrunk = counted<std::uint8_t>(20);
    while (shrunk.size() > 3)
        shrunk.pop();
    EXPECT_EQ(shrunk, (Bytes{0, 1, 2}));
    EXPECT_NE(shrunk, (Bytes{0, 1}));
    EXPECT_NE(shrunk, (Bytes{0, 1, 3}));
    EXPECT_NE(shrunk, Bytes());
}

TEST(VectorTest, popsTheLastValue) {
    Bytes bytes{1, 2};
    EXPECT_EQ(bytes.pop(), 2);
    EXPECT_EQ(bytes, Bytes{1});
}

TEST(VectorTest, keepsItsRoomWhenCleared) {
    auto bytes = counted<std::uint8_t>(100);
    bytes.clear();
    EXPECT_TRUE(bytes.empty());
    const std::size_t before = TestSupport::allocations();
    for (std::uint8_t i = 0; i < 100; ++i)
        bytes.push(i);
    EXPECT_EQ(TestSupport::allocations(), before);
}

/// Every pair of sizes below, within and beyond the vector's own room.
class VectorSizesTest : public ::testing::TestWithParam<std::tuple<std::size_t, std::size_t>> {
protected:
    const Bytes from = counted<std::uint8_t>(std::get<0>(GetParam()));
    Bytes to = counted<std::uint8_t>(std::get<1>(GetParam()));
};

TEST_P(VectorSizesTest, areCopied) {
    to = from;
    EXPECT_EQ(to, from);
    to.push(77);
    EXPECT_EQ(from, counted<std::uint8_t>(from.size()));
}

TEST_P(VectorSizesTest, areMoved) {
    Bytes source = from;
    to = std::move(source);
    EXPECT_EQ(to, from);
    const Bytes built = std::move(to);
    EXPECT_EQ(built, from);
}

TEST_P(VectorSizesTest, areSwapped) {
    Bytes source = from;
    source.swap(to);
    EXPECT_EQ(to, from);
    EXPECT_EQ(source, counted<std::uint8_t>(std::get<1>(GetParam())));
}

INSTANTIATE_TEST_SUITE_P(OfBoth, VectorSizesTest,
                         ::testing::Combine(::testing::Values(0, 1, 8, 9, 40),
                                            ::testing::Values(0, 1, 8, 9, 40)));

TEST(VectorTest, survivesItsAssignmentToItself) {
    auto bytes = counted<std::uint8_t>(40);
    const Bytes& itself = bytes;
    bytes = itself;
    EXPECT_EQ(bytes, counted<std::uint8_t>(40));
}

TEST(VectorTest, givesItsMemoryBack) {
    const std::ptrdiff_t before = TestSupport::outstandingBlocks();
    {
        auto bytes = counted<std::uint8_t>(40);
        const Bytes copy = bytes;
        bytes = counted<std::uint8_t>(400);
    }
    EXPECT_EQ(TestSupport::outstandingBlocks(), before);
}

TEST(VectorTest, isAsItWasWhenItCannotGrow) {
    auto bytes = counted<std::uint8_t>(8);
    const TestSupport::FailingAllocation failing(0);
    EXPECT_THROW(bytes.push(8), std::bad_alloc);
    EXPECT_EQ(bytes, counted<std::uint8_t>(8));
}

TEST(VectorTest, isAsItWasWhenItCannotTakeACopy) {
    auto bytes = counted<std::uint8_t>(8);
    const auto larger = counted<std::uint8_t>(9);
    const TestSupport::FailingAllocation failing(0);
    EXPECT_THROW(bytes = larger, std::bad_alloc);
    EXPECT_EQ(bytes, counted<std::uint8_t>(8));
}

}  // namespace
}  // namespace Orin
