#include "agent/service/RequestQueue.h"

#include <chrono>
#include <utility>

#include "agent/service/RequestApplier.h"
#include "agent/streams/Operations.h"

namespace QosAgent {
namespace {

using namespace std::chrono_literals;

/// After so long, clients are read from and written to before the next request.
constexpr auto kTurn = 1ms;

Answer busy(const char* why) {
    Answer answer;
    answer.isBusy = true;
    answer.refused = Remark{1, why};
    return answer;
}

}  // namespace

void RequestQueue::submit(Request request, Done done) {
    const char* why = nullptr;
    {
        const std::lock_guard lock(mutex_);
        if (isStopped_)
            why = "the service is stopping";
        else if (waiting_.size() >= kMostWaiting)
            why = "too many requests are waiting: at most 1024";
        else
            waiting_.push_back({std::move(request), std::move(done)});
        if (why != nullptr) ++turnedAway_;
        if (why == nullptr && std::exchange(isScheduled_, true)) return;
    }
    if (why != nullptr)
        done(busy(why));
    else
        loop_.post([this] { runSome(); });
}

void RequestQueue::runSome() {
    const auto end = std::chrono::steady_clock::now() + kTurn;
    for (;;) {
        isHeldUp_ = keeper_ != nullptr && keeper_->isFull();
        if (isHeldUp_) return;
        auto next = take();
        if (!next) return;
        run(*std::move(next));
        if (std::chrono::steady_clock::now() < end) continue;
        loop_.post([this] { runSome(); });
        return;
    }
}

Answer RequestQueue::applyOne(Request request) {
    if (request.compose) request.line = request.compose(feed_.applied());
    if (isPassedOver(request.line)) return apply_(std::move(request));
    const auto begin = std::chrono::steady_clock::now();
    // Entries of the map stay where they are.
    RequestStatistics::Lines& lines = statistics_.lines[request.door];
    Answer answer = apply_(std::move(request));
    ++(answer.refused ? lines.refused : lines.applied);
    statistics_.applyTimes.add(std::chrono::steady_clock::now() - begin);
    return answer;
}

void RequestQueue::statistics(std::function<void(Statistics)> done) {
    loop_.post([this, done = std::move(done)] {
        Statistics statistics;
        statistics.requests = statistics_;
        {
            const std::lock_guard lock(mutex_);
            statistics.requests.waiting = waiting_.size();
            statistics.requests.turnedAway = turnedAway_;
        }
        statistics.feed = feed_.statistics();
        statistics.grpc = {grpcCounters_.streams, grpcCounters_.waitingBytes, grpcCounters_.merged};
        statisticsSource_(statistics);
        done(std::move(statistics));
    });
}

void RequestQueue::run(Waiting next) {
    const auto applied = std::move(next.request.applied);
    Answer answer = applyOne(std::move(next.request));
    if (applied) applied(answer);
    if (keeper_ == nullptr) return next.done(std::move(answer));
    keeper_->whenKept([answer = std::move(answer), done = std::move(next.done)](const auto& fault) {
        if (fault.empty()) return done(answer);
        Answer refused = notKept(fault);
        refused.line = answer.line;
        done(std::move(refused));
    });
}

void RequestQueue::goOn() {
    if (isHeldUp_) runSome();
}

std::optional<RequestQueue::Waiting> RequestQueue::take() {
    const std::lock_guard lock(mutex_);
    if (waiting_.empty()) {
        isScheduled_ = false;
        return {};
    }
    Waiting next = std::move(waiting_.front());
    waiting_.pop_front();
    return next;
}

void RequestQueue::stop() {
    std::deque<Waiting> rest;
    {
        const std::lock_guard lock(mutex_);
        isStopped_ = true;
        rest.swap(waiting_);
    }
    for (Waiting& each : rest)
        each.done(busy("the service is stopping"));
}

}  // namespace QosAgent
