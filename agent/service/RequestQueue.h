#pragma once

#include <deque>
#include <functional>
#include <mutex>
#include <optional>

#include "agent/feed/Feed.h"
#include "agent/loop/Loop.h"
#include "agent/service/Service.h"
#include "agent/store/Keeper.h"

namespace QosAgent {

/// The service that doors see: requests of any thread wait here in order of arrival and are applied
/// one by one on the loop's thread, where descriptors get their turn in between.
class RequestQueue final : public Service {
public:
    /// As many requests may wait; one more is answered as busy.
    static constexpr std::size_t kMostWaiting = 1024;
    using Apply = std::function<Answer(Request)>;

    /// Loop, feed and keeper must outlive the queue. `keeper` may be null.
    RequestQueue(Loop& loop, Feed& feed, Apply apply, Keeper* keeper = nullptr)
        : loop_(loop), feed_(feed), apply_(std::move(apply)), keeper_(keeper) {}

    void submit(Request request, Done done) override;
    Snapshot snapshot() override { return feed_.snapshot(); }
    std::unique_ptr<Subscription> subscribe(std::function<void()> wake) override {
        return feed_.subscribe(std::move(wake));
    }

    void statistics(std::function<void(Statistics)> done) override;
    StreamCounters& grpcCounters() override { return grpcCounters_; }
    /// Adds to the figures what others than this queue and the feed know.
    void statisticsSourceIs(std::function<void(Statistics&)> source) {
        statisticsSource_ = std::move(source);
    }

    /// Goes on after the keeper was full. Event thread only.
    void goOn();
    /// Answers requests that were not begun, and all later ones, as busy. Event thread only.
    void stop();

private:
    struct Waiting {
        Request request;
        Done done;
    };

    void runSome();
    Answer applyOne(Request request);
    void run(Waiting next);
    std::optional<Waiting> take();

    Loop& loop_;
    Feed& feed_;
    Apply apply_;
    Keeper* keeper_;
    RequestStatistics statistics_;
    StreamCounters grpcCounters_;
    std::function<void(Statistics&)> statisticsSource_ = [](Statistics&) {};
    std::mutex mutex_;  ///< guards what follows
    std::uint64_t turnedAway_ = 0;
    std::deque<Waiting> waiting_;
    bool isScheduled_ = false;  ///< `runSome` will be called, or is running
    bool isStopped_ = false;
    bool isHeldUp_ = false;  ///< until the keeper has room; event thread only
};

}  // namespace QosAgent
