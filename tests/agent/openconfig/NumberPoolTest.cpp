#include <gtest/gtest.h>

#include <map>
#include <random>

#include "agent/openconfig/NumberPool.h"

namespace QosAgent {
namespace {

TEST(NumberPoolTest, hasAllNumbersFreeAtFirst) {
    EXPECT_EQ(NumberPool().leastFree(), 0u);
}

TEST(NumberPoolTest, fillsGapsBeforeItGoesOn) {
    NumberPool pool;
    for (const std::uint32_t number : {0u, 1u, 2u, 4u})
        pool.take(number);
    EXPECT_EQ(pool.leastFree(), 3u);
    pool.take(3);
    EXPECT_EQ(pool.leastFree(), 5u);
    pool.release(1);
    EXPECT_EQ(pool.leastFree(), 1u);
}

TEST(NumberPoolTest, keepsANumberUntilItsLastUserHasGone) {
    NumberPool pool;
    pool.take(0);
    pool.take(0);
    pool.release(0);
    EXPECT_EQ(pool.leastFree(), 1u);
    pool.release(0);
    EXPECT_EQ(pool.leastFree(), 0u);
}

TEST(NumberPoolTest, isNotTroubledByLargeNumbers) {
    NumberPool pool;
    pool.take(4294967295u);
    EXPECT_EQ(pool.leastFree(), 0u);
    pool.release(4294967295u);
    EXPECT_EQ(pool.leastFree(), 0u);
}

TEST(NumberPoolTest, equalsACountAfterAnyChanges) {
    std::mt19937 random(3);
    NumberPool pool;
    std::map<std::uint32_t, unsigned> users;
    for (int step = 0; step < 5000; ++step) {
        const auto number = static_cast<std::uint32_t>(random() % 12);
        if (random() % 2 == 0) {
            pool.take(number);
            ++users[number];
        } else if (users[number] > 0) {
            pool.release(number);
            --users[number];
        }
        std::uint32_t least = 0;
        while (users[least] > 0)
            ++least;
        ASSERT_EQ(pool.leastFree(), least);
    }
}

}  // namespace
}  // namespace QosAgent
