#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <vector>

#include "agent/feed/ChangeSet.h"

namespace QosAgent {

/// Holds the change sets that wait for one reader. Two threads meet here: the event thread puts
/// change sets in, the reader takes them out.
class Mailbox {
public:
    /// As many change sets wait one by one; the next one has all of them merged into one.
    static constexpr std::size_t kMostWaiting = 1024;

    /// `wake` is called by the thread that puts, when the first change set waits. It must only post
    /// a notice to the reader: it must neither wait nor call the mailbox.
    explicit Mailbox(std::function<void()> wake) : wake_(std::move(wake)) {}

    /// Returns how many published changes the reader will not get one by one, because those that
    /// wait had to be merged.
    std::size_t put(ChangeSetPtr changes);
    std::vector<ChangeSetPtr> take();
    /// How many change sets wait.
    std::size_t waiting();
    /// `wake` is neither running nor called any more when this returns.
    void close();

private:
    std::size_t merge();

    std::mutex mutex_;  ///< guards `waiting_`
    std::vector<ChangeSetPtr> waiting_;
    std::mutex wakeMutex_;  ///< guards `wake_`; held while it is called, and never with `mutex_`
    std::function<void()> wake_;
};

}  // namespace QosAgent
