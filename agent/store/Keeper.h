#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

#include "agent/feed/Feed.h"
#include "agent/store/CommitPipeline.h"
#include "agent/store/TransactionCollector.h"

namespace QosAgent {

/// Keeps what requests change: each becomes a transaction, committed on another thread. What may be
/// told only when it is kept waits here meanwhile. After a commit that failed, the inputs go back
/// to what is kept. Event thread only, where nothing else is said.
class Keeper {
public:
    /// Gets why a request's transaction is not kept; empty if all up to this request is kept.
    using Task = std::function<void(const StoreFault& fault)>;
    /// So many requests wait for their commits before no more should be applied.
    static constexpr std::size_t kMostWaiting = 4096;

    /// Gets the time from the end of a request until its transaction was found kept.
    using Kept = std::function<void(std::chrono::nanoseconds time)>;

    /// Begins to collect. What is passed must outlive the keeper.
    Keeper(Store& store, Database& database, Configuration& configuration, Feed& feed);

    /// From now on, `wake` is called when `poll` has something to do, on any thread. It must only
    /// post a notice.
    void wakeIs(std::function<void()> wake);

    /// From now on, `kept` is called for each transaction that is kept. It may be null.
    void keptIs(Kept kept) { kept_ = std::move(kept); }

    /// Ends a request: what changed since the last one is one transaction. Subscribers of the feed
    /// are told when it is kept.
    void endRequest();
    /// Calls the task when all that was applied so far is kept, or has been taken back. At once if
    /// nothing waits.
    void whenKept(Task task);
    /// Calls the tasks that are due.
    void poll();
    /// Waits until all that was applied is kept or taken back, and calls the tasks.
    void flush();
    bool isFull() const { return waiting_.size() >= kMostWaiting; }
    bool isIdle() const { return waiting_.empty(); }

private:
    /// A request that is not known to be kept.
    struct Waiting {
        TransactionPtr transaction;  ///< null if it changed nothing
        std::uint64_t number;        ///< of the last transaction so far
        ConfigurationTree before;    ///< the configuration before it
        ChangeSetPtr changes;        ///< for subscribers; may be null
        std::vector<Task> tasks;
        std::chrono::steady_clock::time_point begin = std::chrono::steady_clock::now();
    };

    void release(const CommitPipeline::Progress& progress);
    void takeBack(const StoreFault& fault);
    void undo(const std::deque<Waiting>& dropped);

    Store& store_;
    Database& database_;
    Configuration& configuration_;
    Feed& feed_;
    TransactionCollector collector_;
    ConfigurationTree tree_;  ///< after the last request
    std::uint64_t lastNumber_;
    std::deque<Waiting> waiting_;
    /// What transactions that were dropped, and what took them back, changed in the state: it is
    /// kept with the next one.
    StateRecords carried_;
    bool isTransaction_ = false;  ///< the last request made one
    Kept kept_;
    std::mutex wakeMutex_;  ///< guards `wake_`
    std::function<void()> wake_;
    CommitPipeline pipeline_;  ///< last: its thread uses the others
};

}  // namespace QosAgent
