#include <gtest/gtest.h>

#include <array>
#include <string>
#include <thread>
#include <vector>

#include "platform/Orin/String.h"
#include "platform/Orin/ThreadControl.h"
#include "tests/support/Allocations.h"

namespace Orin {
namespace {

TEST(SharedTextTest, isOneTextForEqualNames) {
    const String first = String::shared("voice");
    const String second = String::shared(std::string("voi") + "ce");
    EXPECT_EQ(first.view().data(), second.view().data());
    EXPECT_EQ(first, "voice");
}

TEST(SharedTextTest, isAnotherTextForAnotherName) {
    EXPECT_NE(String::shared("voice"), String::shared("video"));
    EXPECT_NE(String::shared(std::string_view("a\0b", 3)), String::shared("a"));
}

TEST(SharedTextTest, equalsATextThatIsNotShared) {
    const String own("voice");
    const String shared = String::shared("voice");
    EXPECT_NE(own.view().data(), shared.view().data());
    EXPECT_EQ(own, shared);
    EXPECT_EQ(own.hash(), shared.hash());
}

TEST(SharedTextTest, isNothingForTheEmptyName) {
    const std::size_t before = TestSupport::allocations();
    EXPECT_TRUE(String::shared("").empty());
    EXPECT_EQ(TestSupport::allocations(), before);
}

TEST(SharedTextTest, isGivenOutAgainWithoutAnAllocation) {
    const String kept = String::shared("kept");
    const std::size_t before = TestSupport::allocations();
    const String again = String::shared("kept");
    EXPECT_EQ(TestSupport::allocations(), before);
    EXPECT_EQ(again, kept);
}

TEST(SharedTextTest, goesWithItsLastCopy) {
    String::shared("warm the table up");
    const std::ptrdiff_t before = TestSupport::outstandingBlocks();
    {
        const String text = String::shared("goes");
        const String copy = text;  // NOLINT(performance-unnecessary-copy-initialization)
        EXPECT_GT(TestSupport::outstandingBlocks(), before);
    }
    EXPECT_EQ(TestSupport::outstandingBlocks(), before);
    EXPECT_EQ(String::shared("goes"), "goes");
}

TEST(SharedTextTest, leavesNothingBehindWhenMemoryIsShort) {
    String::shared("warm the table up");
    const std::ptrdiff_t before = TestSupport::outstandingBlocks();
    const auto failures = TestSupport::failEachAllocation(
        [] { EXPECT_EQ(String::shared("short"), "short"); },
        [&] { EXPECT_EQ(TestSupport::outstandingBlocks(), before); });
    EXPECT_EQ(failures, 1u);
    EXPECT_EQ(TestSupport::outstandingBlocks(), before);
}

TEST(SharedTextTest, isFoundHoweverManyThereAreAndHoweverManyWent) {
    std::vector<String> texts;
    for (int i = 0; i < 1'000; ++i)
        texts.push_back(String::shared("text " + std::to_string(i)));
    for (int i = 0; i < 1'000; i += 3)
        texts[static_cast<std::size_t>(i)] = String();
    for (int i = 0; i < 1'000; ++i) {
        const String& text = texts[static_cast<std::size_t>(i)];
        const String found = String::shared("text " + std::to_string(i));
        EXPECT_EQ(found, "text " + std::to_string(i));
        EXPECT_EQ(found.view().data() == text.view().data(), i % 3 != 0);
    }
}

TEST(SharedTextTest, isAskedForAndDroppedBySeveralThreads) {
    ThreadControl::severalThreadsActiveIs(true);
    const auto askAndDrop = [] {
        for (int round = 0; round < 20'000; ++round) {
            const String text = String::shared(round % 2 == 0 ? "even" : "odd");
            ASSERT_EQ(text.view(), round % 2 == 0 ? "even" : "odd");
        }
    };
    std::array<std::thread, 3> threads;
    for (std::thread& thread : threads)
        thread = std::thread(askAndDrop);
    for (std::thread& thread : threads)
        thread.join();
    ThreadControl::severalThreadsActiveIs(false);
}

}  // namespace
}  // namespace Orin
