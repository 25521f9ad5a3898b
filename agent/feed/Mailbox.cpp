#include "agent/feed/Mailbox.h"

#include <utility>

#include "agent/feed/ChangeCollector.h"

namespace QosAgent {

void Mailbox::put(ChangeSetPtr changes) {
    {
        const std::lock_guard lock(mutex_);
        if (waiting_.size() == kMostWaiting) merge();
        waiting_.push_back(std::move(changes));
        if (waiting_.size() > 1) return;
    }
    const std::lock_guard lock(wakeMutex_);
    if (wake_) wake_();
}

std::vector<ChangeSetPtr> Mailbox::take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(waiting_, {});
}

void Mailbox::close() {
    const std::lock_guard lock(wakeMutex_);
    wake_ = nullptr;
}

void Mailbox::merge() {
    ChangeCollector all;
    for (const ChangeSetPtr& changes : waiting_)
        all.add(*changes);
    ChangeSetPtr whole = all.take(waiting_.front()->before, waiting_.back()->after);
    waiting_.assign(1, std::move(whole));
}

}  // namespace QosAgent
