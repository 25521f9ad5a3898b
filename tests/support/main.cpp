#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "tests/support/LiveCounts.h"

/// What every test program does: run its tests, with an eye on what they leave alive.
int main(int argc, char** argv) {
    ::testing::InitGoogleMock(&argc, argv);
    auto listener = std::make_unique<TestSupport::LiveCountsListener>();
    ::testing::UnitTest::GetInstance()->listeners().Append(listener.release());
    return RUN_ALL_TESTS();
}
