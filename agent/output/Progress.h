#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace QosAgent {

/// Draws a progress line on standard error if that is a terminal and the load takes longer than a
/// second. The destructor removes the line. A separate thread draws it and uses only this object.
class Progress {
public:
    /// `what` is the name of the input that is loaded.
    explicit Progress(std::string_view what);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Reports that `done` of `total` is done. The total must be the same in all calls. Before the
    /// first call the total is unknown.
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
