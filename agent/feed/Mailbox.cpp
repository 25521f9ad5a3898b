#include "agent/feed/Mailbox.h"

#include <utility>

#include "agent/feed/ChangeCollector.h"

namespace QosAgent {

std::size_t Mailbox::put(ChangeSetPtr changes) {
    std::size_t merged = 0;
    {
        const std::lock_guard lock(mutex_);
        if (waiting_.size() == kMostWaiting) merged = merge();
        waiting_.push_back(std::move(changes));
        if (waiting_.size() > 1) return merged;
    }
    const std::lock_guard lock(wakeMutex_);
    if (wake_) wake_();
    return merged;
}

std::size_t Mailbox::waiting() {
    const std::lock_guard lock(mutex_);
    return waiting_.size();
}

std::vector<ChangeSetPtr> Mailbox::take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(waiting_, {});
}

void Mailbox::close() {
    const std::lock_guard lock(wakeMutex_);
    wake_ = nullptr;
}

std::size_t Mailbox::merge() {
    ChangeCollector all;
    std::size_t steps = 0;
    for (const ChangeSetPtr& changes : waiting_) {
        all.merge(*changes);
        steps += changes->steps.size();
    }
    ChangeSetPtr whole = all.take(waiting_.front()->before, waiting_.back()->after);
    const std::size_t left = whole->steps.size();
    waiting_.assign(1, std::move(whole));
    return steps - left;
}

}  // namespace QosAgent
