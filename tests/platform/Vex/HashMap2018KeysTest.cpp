#include <gtest/gtest.h>

#include <set>
#include <string_view>

#include "platform/Orin/String.h"
#include "platform/Vex/HashMap2018.h"
#include "tests/support/Allocations.h"
#include "tests/support/Printers.h"

namespace Vex {
namespace {

/// A key whose hash is always the same.
struct Colliding {
    std::uint32_t value;
    std::uint32_t hash(std::uint32_t) const noexcept { return 7; }
    friend bool operator==(const Colliding&, const Colliding&) = default;
};

TEST(HashMap2018CollisionTest, tellsKeysOfEqualHashApart) {
    HashMap2018<Colliding, std::uint32_t> map;
    for (std::uint32_t key = 0; key < 20; ++key)
        map.enter({key}, key * 10);
    for (std::uint32_t key = 0; key < 20; key += 2)
        EXPECT_EQ(map.remove(Colliding{key}), key * 10);
    for (std::uint32_t key = 1; key < 20; key += 2) {
        ASSERT_NE(map.find(Colliding{key}), nullptr);
        EXPECT_EQ(*map.find(Colliding{key}), key * 10);
    }
    EXPECT_EQ(map.find(Colliding{0}), nullptr);
    EXPECT_EQ(map.find(Colliding{20}), nullptr);
}

/// A key that counts how often it is hashed and compared.
struct Compared {
    std::uint32_t value;
    std::uint32_t hash(std::uint32_t) const noexcept {
        ++hashes;
        return value;
    }
    friend bool operator==(const Compared& a, const Compared& b) {
        ++comparisons;
        return a.value == b.value;
    }
    static inline int hashes = 0;
    static inline int comparisons = 0;
};

TEST(HashMap2018CollisionTest, comparesOnlyKeysOfEqualHash) {
    HashMap2018<Compared, std::uint32_t> map;
    map.enter({1}, 10U);
    map.enter({1 + (1U << 16)}, 20U);  // in the same bucket
    Compared::comparisons = 0;
    ASSERT_NE(map.find(Compared{1}), nullptr);
    EXPECT_EQ(*map.find(Compared{1}), 10u);
    EXPECT_EQ(map.find(Compared{1 + (1U << 17)}), nullptr);
    EXPECT_EQ(Compared::comparisons, 2);
}

TEST(HashMap2018FinderTest, hashesNoKeyThatIsAskedForInOrderOfEntry) {
    HashMap2018<Compared, std::uint32_t> map;
    for (std::uint32_t key = 1; key < 4; ++key)
        map.enter({key}, key * 10);
    HashMap2018<Compared, std::uint32_t>::Finder finder(map);
    Compared::hashes = 0;
    for (std::uint32_t key = 1; key < 4; ++key)
        EXPECT_EQ(*finder.find(Compared{key}), key * 10);
    EXPECT_EQ(Compared::hashes, 0);
    EXPECT_EQ(*finder.find(Compared{1}), 10u);
    EXPECT_EQ(finder.find(Compared{9}), nullptr);
    EXPECT_EQ(Compared::hashes, 2);
}

TEST(HashMap2018FinderTest, findsNothingWhereNothingIs) {
    const HashMap2018<Compared, std::uint32_t> map;
    EXPECT_EQ((HashMap2018<Compared, std::uint32_t>::Finder(map).find(Compared{0})), nullptr);
}

TEST(HashMap2018TableTest, doublesWheneverItIsFull) {
    const std::size_t before = memberTracker.total();
    HashMap2018<std::uint32_t, std::uint32_t> map;
    for (std::uint32_t key = 0; key < 1000; ++key) {
        map.enter(key, key);
        if (key == 4) {
            EXPECT_EQ(memberTracker.total() - before, 5u + 2) << "tables of 4 and 8";
        }
    }
    EXPECT_EQ(memberTracker.total() - before, 1000u + 9) << "tables of 4, 8, ... 1024";
}

TEST(KeyTraitsTest, spreadNumbersWhateverTheSeed) {
    for (const std::uint32_t seed : {0U, 1U, 0xFFFFFFFFU}) {
        std::set<std::uint32_t> hashes;
        for (std::uint32_t number = 0; number < 1000; ++number)
            hashes.insert(KeyTraits<std::uint32_t>::hash(number, seed));
        EXPECT_GT(hashes.size(), 990u) << seed;
    }
}

using ByName = HashMap2018<Orin::String, std::uint32_t, seedOf("a test")>;

TEST(HashMap2018ByNameTest, isSearchedByPlainTextWithoutAllocating) {
    ByName byName;
    byName.enter("a name that is longer than any short text", 1U);
    const std::size_t before = TestSupport::allocations();
    const auto* found = byName.find(std::string_view("a name that is longer than any short text"));
    const auto* missed = byName.find("another");
    EXPECT_EQ(TestSupport::allocations(), before);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(*found, 1u);
    EXPECT_EQ(missed, nullptr);
}

TEST(HashMap2018ByNameTest, removesByPlainText) {
    ByName byName;
    byName.enter("name", 1U);
    EXPECT_EQ(byName.remove(std::string_view("name")), 1u);
    EXPECT_TRUE(byName.empty());
}

TEST(HashMap2018ByNameTest, holdsTheEmptyNameAndNamesWithNul) {
    using namespace std::string_view_literals;
    ByName byName;
    byName.enter("", 1U);
    byName.enter("\0"sv, 2U);
    EXPECT_EQ(*byName.find(""sv), 1u);
    EXPECT_EQ(*byName.find("\0"sv), 2u);
}

TEST(HashMap2018ByNameTest, hasASeedOfItsOwn) {
    EXPECT_NE(seedOf("PortSm.shipSm"), seedOf("PortSm.tideSm"));
    EXPECT_NE(KeyTraits<Orin::String>::hash(std::string_view("x"), 1),
              KeyTraits<Orin::String>::hash(std::string_view("x"), 2));
    EXPECT_NE(KeyTraits<std::uint8_t>::hash(1, 1), KeyTraits<std::uint8_t>::hash(1, 2));
}

}  // namespace
}  // namespace Vex
