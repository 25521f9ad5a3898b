#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <thread>

namespace QosAgent {

/// Draws a line on standard error while a load takes longer than a second, and only on a terminal;
/// takes it away in the end. A thread of its own draws it; it touches nothing but this object.
class Progress {
public:
    /// `what` is loaded; what is done is counted up to `total`.
    Progress(std::string what, std::size_t total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void doneIs(std::size_t done) { done_.store(done, std::memory_order_relaxed); }

private:
    void draw();

    std::string what_;
    std::size_t total_;
    std::atomic<std::size_t> done_{0};
    std::mutex mutex_;
    std::condition_variable ended_;
    bool isEnded_ = false;
    std::thread drawer_;
};

}  // namespace QosAgent
