#include "agent/store/CommitPipeline.h"

#include <csignal>
#include <utility>

namespace QosAgent {
namespace {

/// Signals are for the threads that wait for them: a thread that begins while this lives gets none.
class NoSignals {
public:
    NoSignals() {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~NoSignals() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    NoSignals(const NoSignals&) = delete;
    NoSignals& operator=(const NoSignals&) = delete;

private:
    sigset_t before_{};
};

}  // namespace

CommitPipeline::CommitPipeline(Store& store, std::function<void()> progressed)
    : store_(store), progressed_(std::move(progressed)) {
    progress_.kept = store.lastNumber();
    const NoSignals inThread;
    thread_ = std::thread([this] { run(); });
}

CommitPipeline::~CommitPipeline() {
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

void CommitPipeline::commit(TransactionPtr transaction) {
    {
        const std::lock_guard lock(mutex_);
        if (!progress_.fault.empty()) return;
        waiting_.push_back(std::move(transaction));
    }
    changed_.notify_all();
}

CommitPipeline::Progress CommitPipeline::progress() const {
    const std::lock_guard lock(mutex_);
    return progress_;
}

CommitPipeline::Progress CommitPipeline::wait() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return isIdle(); });
    return progress_;
}

void CommitPipeline::resume() {
    const std::lock_guard lock(mutex_);
    progress_.fault.clear();
}

void CommitPipeline::run() {
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [this] { return isEnding_ || !waiting_.empty(); });
        if (waiting_.empty()) return;
        const std::vector<TransactionPtr> group = std::exchange(waiting_, {});
        isCommitting_ = true;
        lock.unlock();
        StoreFault fault = store_.commit(group);
        lock.lock();
        isCommitting_ = false;
        if (fault.empty())
            progress_.kept = group.back()->number;
        else
            waiting_.clear();
        progress_.fault = std::move(fault);
        lock.unlock();
        changed_.notify_all();
        progressed_();
        lock.lock();
    }
}

}  // namespace QosAgent
