#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "tests/support/Harbour.h"
#include "tests/support/LiveCounts.h"

namespace TestSupport {
namespace {

class LiveCountsListenerTest : public ::testing::Test {
protected:
    void end() { listener.OnTestEnd(*::testing::UnitTest::GetInstance()->current_test_info()); }

    LiveCountsListenerTest() {
        listener.OnTestStart(*::testing::UnitTest::GetInstance()->current_test_info());
    }
    LiveCountsListener listener;
};

TEST_F(LiveCountsListenerTest, failsATestThatLeavesAnObjectAlive) {
    const auto left = Harbour::Tide::create();
    EXPECT_NONFATAL_FAILURE(end(), "Harbour::Tide");
}

TEST_F(LiveCountsListenerTest, saysNothingWhereAllObjectsWent) {
    Harbour::Tide::create();
    end();
}

}  // namespace
}  // namespace TestSupport
