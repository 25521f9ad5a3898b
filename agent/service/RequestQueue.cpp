#include "agent/service/RequestQueue.h"

#include <chrono>
#include <utility>

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
        if (why == nullptr && std::exchange(isScheduled_, true)) return;
    }
    if (why != nullptr)
        done(busy(why));
    else
        loop_.post([this] { runSome(); });
}

void RequestQueue::runSome() {
    const auto end = std::chrono::steady_clock::now() + kTurn;
    while (auto next = take()) {
        next->done(apply_(std::move(next->request)));
        if (std::chrono::steady_clock::now() < end) continue;
        loop_.post([this] { runSome(); });
        return;
    }
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
