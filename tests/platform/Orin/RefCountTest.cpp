#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <thread>
#include <vector>

#include "platform/Orin/Node.h"
#include "platform/Orin/Ptr.h"
#include "platform/Orin/RefCount.h"
#include "platform/Orin/String.h"

namespace Orin {
namespace {

constexpr std::uint32_t kRounds = 200'000;
/// How often a thread must have seen the other at work, so that they did work at the same time.
constexpr std::uint32_t kMeetings = 10'000;
constexpr std::uint32_t kMostSteps = 5'000'000;

class RefCountTest : public ::testing::Test {
protected:
    ~RefCountTest() override { ThreadControl::severalThreadsActiveIs(false); }

    /// Runs `work` in two threads that begin together.
    template <class Work>
    static void inTwoThreads(Work work) {
        std::latch begin(2);
        const auto run = [&] {
            begin.arrive_and_wait();
            work();
        };
        std::thread other(run);
        run();
        other.join();
    }
    /// Calls `step` in two threads until each has often seen the other at work, or as often as a
    /// test may: where one processor has to do for both they hardly meet. Returns the calls.
    template <class Step>
    static std::uint32_t whileTheyMeet(Step step) {
        std::atomic<std::uint32_t> steps[2]{};
        std::atomic<int> next{0};
        inTwoThreads([&] {
            const int self = next++;
            std::uint32_t seen = 0;
            std::uint32_t meetings = 0;
            while (meetings < kMeetings && steps[self] < kMostSteps) {
                step();
                ++steps[self];
                const std::uint32_t now = steps[1 - self];
                if (now != seen) ++meetings;
                seen = now;
            }
        });
        return steps[0] + steps[1];
    }
};

TEST_F(RefCountTest, beginsWithOneOwner) {
    EXPECT_EQ(RefCount().value(), 1u);
}

TEST_F(RefCountTest, tellsTheLastOwnerOnlyWhileOneThreadIsActive) {
    RefCount count;
    count.up();
    EXPECT_EQ(count.value(), 2u);
    EXPECT_FALSE(count.down());
    EXPECT_TRUE(count.down());
}

TEST_F(RefCountTest, tellsTheLastOwnerOnlyWhileSeveralThreadsAreActive) {
    ThreadControl::severalThreadsActiveIs(true);
    RefCount count;
    count.up();
    EXPECT_EQ(count.value(), 2u);
    EXPECT_FALSE(count.down());
    EXPECT_TRUE(count.down());
}

TEST_F(RefCountTest, takesAnotherOwnerOnlyWhileThereIsOne) {
    RefCount count;
    EXPECT_TRUE(count.upUnlessGone());
    EXPECT_EQ(count.value(), 2u);
    EXPECT_FALSE(count.down());
    EXPECT_TRUE(count.down());
    EXPECT_FALSE(count.upUnlessGone());
    EXPECT_EQ(count.value(), 0u);
}

TEST_F(RefCountTest, goesOnFromWhatItCountedPlainly) {
    RefCount count;
    count.up();
    ThreadControl::severalThreadsActiveIs(true);
    count.up();
    EXPECT_EQ(count.value(), 3u);
}

TEST_F(RefCountTest, losesNoStepBetweenSeveralThreads) {
    ThreadControl::severalThreadsActiveIs(true);
    RefCount count;
    inTwoThreads([&] {
        for (std::uint32_t i = 0; i < kRounds; ++i)
            count.up();
    });
    EXPECT_EQ(count.value(), 1 + 2 * kRounds);
    inTwoThreads([&] {
        for (std::uint32_t i = 0; i < kRounds; ++i)
            (void)count.down();
    });
    EXPECT_EQ(count.value(), 1u);
}

TEST_F(RefCountTest, losesNoStepWhileThreadsMeet) {
    ThreadControl::severalThreadsActiveIs(true);
    RefCount count;
    const std::uint32_t ups = whileTheyMeet([&] { count.up(); });
    EXPECT_EQ(count.value(), 1 + ups);
    RefCount other;
    const std::uint32_t takes = whileTheyMeet([&] { (void)other.upUnlessGone(); });
    EXPECT_EQ(other.value(), 1 + takes);
}

TEST_F(RefCountTest, endsASharedNodeOnceBetweenSeveralThreads) {
    static std::atomic<int> ended;
    struct Counted : Node {
        ~Counted() override { ++ended; }
    };
    ThreadControl::severalThreadsActiveIs(true);
    ended = 0;
    for (int i = 0; i < 2'000; ++i) {
        auto node = Ptr<Counted>::adopt(new Counted);
        std::thread other([held = node]() mutable { held = nullptr; });
        node = nullptr;
        other.join();
    }
    EXPECT_EQ(ended, 2'000);
}

TEST_F(RefCountTest, countsTheCopiesOfATextBetweenSeveralThreads) {
    ThreadControl::severalThreadsActiveIs(true);
    const String text("shared");
    inTwoThreads([&] {
        for (std::uint32_t i = 0; i < kRounds; ++i)
            const String copy(text);  // NOLINT(performance-unnecessary-copy-initialization)
    });
    EXPECT_EQ(text, "shared");
}

}  // namespace
}  // namespace Orin
