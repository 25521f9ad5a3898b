#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <numeric>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "agent/service/RequestQueue.h"
#include "tests/agent/support/LoopLibrary.h"
#include "tests/agent/support/TextDatabase.h"

namespace QosAgent {
namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

class RequestQueueTest : public ::testing::Test {
protected:
    RequestQueueTest()
        : loop(loopModule().make()), feed(db.database), queue(*loop, feed, [this](Request request) {
              applied.push_back(request.door + ':' + request.line);
              Answer answer;
              answer.lines = {request.line};
              if (request.line == "refuse") answer.refused = Remark{1, "asked for"};
              return answer;
          }) {}

    /// Submits, and keeps `LINE` for an answer, `busy LINE` for none.
    void submit(const std::string& line) {
        queue.submit({line, "door"}, [this, line](const Answer& answer) {
            answers.push_back(answer.isBusy ? "busy " + line : answer.lines.front());
            if (answers.size() == awaited) loop->stop();
        });
    }

    TextDatabase db;
    std::unique_ptr<Loop> loop;
    Feed feed;
    Texts applied;
    Texts answers;
    std::size_t awaited = 0;
    RequestQueue queue;
};

TEST_F(RequestQueueTest, appliesInOrderOfArrivalAndAnswersEach) {
    awaited = 3;
    for (const char* line : {"a", "b", "c"})
        submit(line);
    EXPECT_EQ(applied, Texts{});
    loop->run();
    EXPECT_EQ(applied, (Texts{"door:a", "door:b", "door:c"}));
    EXPECT_EQ(answers, (Texts{"a", "b", "c"}));
}

TEST_F(RequestQueueTest, countsLinesByDoorTheirTimeAndWhatIsTurnedAway) {
    queue.statisticsSourceIs([](Statistics& statistics) { statistics.version = "1"; });
    std::optional<Statistics> counted;
    for (const char* line : {"a", "# no operation", "refuse"})
        submit(line);
    queue.submit({"b", "door"}, [&](const Answer&) {
        queue.stop();
        submit("late");
        queue.statistics([&](Statistics statistics) {
            counted = std::move(statistics);
            loop->stop();
        });
    });
    loop->run();
    ASSERT_TRUE(counted);
    EXPECT_EQ(counted->version, "1");
    using Lines = RequestStatistics::Lines;
    EXPECT_EQ(counted->requests.lines,
              (std::map<std::string, Lines, std::less<>>{{"door", {2, 1}}}));
    EXPECT_EQ(std::reduce(counted->requests.applyTimes.counts.begin(),
                          counted->requests.applyTimes.counts.end()),
              3u);
    EXPECT_EQ(counted->requests.turnedAway, 1u);
    EXPECT_EQ(counted->requests.waiting, 0u);
}

TEST(TimeHistogramTest, countsATimeInTheFirstBucketThatHoldsIt) {
    TimeHistogram histogram;
    for (const auto time : {10'000ns, 10'001ns, 11'000'000'000ns})
        histogram.add(time);
    EXPECT_EQ(histogram.counts,
              (decltype(histogram.counts){1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}));
    EXPECT_EQ(histogram.sum, 11'000'020'001ns);
}

TEST_F(RequestQueueTest, composesALineWhenItsTurnComes) {
    feed.keepState();
    const std::uint64_t first = feed.snapshot().sequence;
    queue.submit({"a", "door"}, [this](const Answer&) { feed.endRequest(); });
    Request later{"", "door"};
    later.compose = [first](const Snapshot& snapshot) {
        return "after " + std::to_string(snapshot.sequence - first);
    };
    queue.submit(std::move(later), [this](const Answer&) { loop->stop(); });
    loop->run();
    EXPECT_EQ(applied, (Texts{"door:a", "door:after 1"}));
}

TEST_F(RequestQueueTest, takesRequestsFromWithinAnAnswer) {
    queue.submit({"a", "door"}, [this](const Answer&) { submit("b"); });
    awaited = 1;
    loop->run();
    EXPECT_EQ(applied, (Texts{"door:a", "door:b"}));
}

TEST_F(RequestQueueTest, answersAsBusyWhatItHasNoRoomFor) {
    for (std::size_t i = 0; i < RequestQueue::kMostWaiting; ++i)
        submit("x");
    EXPECT_EQ(answers, Texts{});
    submit("one more");
    EXPECT_EQ(answers, Texts{"busy one more"});
    awaited = RequestQueue::kMostWaiting + 1;
    loop->run();
    EXPECT_EQ(applied.size(), RequestQueue::kMostWaiting);
}

TEST_F(RequestQueueTest, answersAsBusyWhatWasNotBegunWhenItStops) {
    submit("a");
    queue.stop();
    submit("b");
    EXPECT_EQ(answers, (Texts{"busy a", "busy b"}));
    loop->post([this] { loop->stop(); });
    loop->run();
    EXPECT_EQ(applied, Texts{});
}

TEST_F(RequestQueueTest, takesRequestsOfAnyThreadAndAnswersOnItsOwn) {
    constexpr std::size_t kEach = 400;
    awaited = 2 * kEach;
    const auto self = std::this_thread::get_id();
    std::atomic<std::size_t> elsewhere{0};
    const auto flood = [&] {
        for (std::size_t i = 0; i < kEach; ++i)
            queue.submit({"x", "door"}, [&](const Answer& answer) {
                if (std::this_thread::get_id() != self) ++elsewhere;
                answers.push_back(answer.lines.front());
                if (answers.size() == awaited) loop->stop();
            });
    };
    std::thread first(flood);
    std::thread second(flood);
    loop->run();
    first.join();
    second.join();
    EXPECT_EQ(applied.size(), 2 * kEach);
    EXPECT_EQ(elsewhere, 0u);
}

}  // namespace
}  // namespace QosAgent
