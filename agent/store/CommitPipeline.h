#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "agent/store/Store.h"

namespace QosAgent {

/// Commits transactions on a thread of its own. While one commit is under way, further transactions
/// gather; the next commit takes all of them at once.
///
/// After a commit that failed, nothing is committed until `resume`: every transaction that was
/// handed over and is not kept is dropped.
class CommitPipeline {
public:
    /// What became of the transactions so far.
    struct Progress {
        std::uint64_t kept = 0;  ///< the number of the last one that is kept
        StoreFault fault = {};   ///< why a commit failed since; empty if none did
    };
    /// `progressed` is called on the pipeline's thread whenever there is progress. It must only
    /// post a notice. The store must outlive the pipeline.
    CommitPipeline(Store& store, std::function<void()> progressed);
    /// Commits what was handed over, and returns when the thread has ended.
    ~CommitPipeline();

    /// Hands a transaction over.
    void commit(TransactionPtr transaction);
    Progress progress() const;
    /// Waits until everything handed over is kept or a commit has failed.
    Progress wait();
    /// Goes on after a failed commit. Until the caller has done so, it may use the store itself.
    void resume();

private:
    void run();
    bool isIdle() const { return !isCommitting_ && (waiting_.empty() || !progress_.fault.empty()); }

    Store& store_;
    std::function<void()> progressed_;
    mutable std::mutex mutex_;  ///< guards what follows
    std::condition_variable changed_;
    std::vector<TransactionPtr> waiting_;
    Progress progress_;
    bool isCommitting_ = false;
    bool isEnding_ = false;
    std::thread thread_;
};

}  // namespace QosAgent
