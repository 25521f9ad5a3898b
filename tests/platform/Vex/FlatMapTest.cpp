#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

#include "platform/Vex/FlatMap.h"
#include "tests/support/Allocations.h"
#include "tests/support/Printers.h"

namespace Vex {
namespace {

using Map = FlatMap<std::uint32_t, std::uint32_t>;

Map mapOf(std::initializer_list<Map::Member> members) {
    Map map;
    for (const auto& [key, value] : members)
        map.is(key, value);
    return map;
}

TEST(FlatMapTest, beginsEmpty) {
    const Map map = mapOf({});
    EXPECT_TRUE(map.empty());
    EXPECT_EQ(map.find(1), nullptr);
    EXPECT_FALSE(mapOf({{1, 10}}).empty());
}

TEST(FlatMapTest, isInAscendingOrderOfKeysHoweverItWasFilled) {
    EXPECT_EQ(mapOf({{3, 30}, {1, 10}, {2, 20}}), mapOf({{1, 10}, {2, 20}, {3, 30}}));
    std::vector<std::uint32_t> keys;
    for (const auto& member : mapOf({{3, 30}, {1, 10}, {2, 20}}))
        keys.push_back(member.key);
    EXPECT_EQ(keys, (std::vector<std::uint32_t>{1, 2, 3}));
}

TEST(FlatMapTest, givesAMemberAnotherValue) {
    Map map = mapOf({{1, 10}, {2, 20}});
    map.is(1, 11);
    EXPECT_EQ(map.size(), 2u);
    EXPECT_EQ(*map.find(1), 11u);
}

TEST(FlatMapTest, comparesKeysAndValues) {
    EXPECT_NE(mapOf({{1, 10}}), mapOf({{1, 11}}));
    EXPECT_NE(mapOf({{1, 10}}), mapOf({{2, 10}}));
    EXPECT_NE(mapOf({{1, 10}}), mapOf({}));
}

TEST(FlatMapTest, keepsOneMemberWithoutAllocating) {
    const std::size_t before = TestSupport::allocations();
    const Map map = mapOf({{4, 2}});
    EXPECT_EQ(TestSupport::allocations(), before);
    EXPECT_EQ(*map.find(4), 2u);
}

TEST(FlatMapTest, agreesWithAModel) {
    std::mt19937 random(1);
    Map map;
    std::map<std::uint32_t, std::uint32_t> model;
    for (std::uint32_t i = 0; i < 500; ++i) {
        const auto key = static_cast<std::uint32_t>(random() % 200);
        map.is(key, i);
        model[key] = i;
    }
    std::map<std::uint32_t, std::uint32_t> walked;
    for (const auto& [key, value] : map)
        walked.emplace_hint(walked.end(), key, value);
    EXPECT_EQ(walked, model);
    EXPECT_EQ(map.size(), model.size());
    for (std::uint32_t key = 0; key < 200; ++key)
        EXPECT_EQ(map.find(key) != nullptr, model.count(key) == 1);
}

}  // namespace
}  // namespace Vex
