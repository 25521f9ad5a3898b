#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "agent/service/RequestQueue.h"
#include "tests/agent/support/LoopLibrary.h"
#include "tests/agent/support/TextDatabase.h"

namespace QosAgent {
namespace {

using Texts = std::vector<std::string>;

class RequestQueueTest : public ::testing::Test {
protected:
    RequestQueueTest()
        : loop(loopModule().make()), feed(db.database), queue(*loop, feed, [this](Request request) {
              applied.push_back(request.door + ':' + request.line);
              Answer answer;
              answer.lines = {request.line};
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
