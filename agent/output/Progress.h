#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace QosAgent {

/// Draws a line on standard error while a load takes longer than a second, and only on a terminal;
/// takes it away in the end. A thread of its own draws it; it touches nothing but this object.
class Progress {
public:
    /// `what` is loaded.
    explicit Progress(std::string_view what);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// So much is done of a total, which is the same each time. Before the first call, nobody knows
    /// how much there is to do.
    void doneIs(std::size_t done, std::size_t total) {
        done_.store(done, std::memory_order_relaxed);
        total_.store(total, std::memory_order_relaxed);
    }

private:
    void draw();
    std::string line() const;

    std::string what_;
    std::size_t columns_;
    std::atomic<std::size_t> total_{0};  ///< 0: not known
    std::atomic<std::size_t> done_{0};
    std::mutex mutex_;
    std::condition_variable ended_;
    bool isEnded_ = false;
    std::thread drawer_;
};

}  // namespace QosAgent
