#include "agent/output/Progress.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <utility>

namespace QosAgent {

Progress::Progress(std::string what, std::size_t total)
    : what_(std::move(what)), total_(std::max<std::size_t>(total, 1)) {
    if (::isatty(STDERR_FILENO) != 0) drawer_ = std::thread([this] { draw(); });
}

Progress::~Progress() {
    if (!drawer_.joinable()) return;
    {
        const std::lock_guard lock(mutex_);
        isEnded_ = true;
    }
    ended_.notify_one();
    drawer_.join();
}

void Progress::draw() {
    using namespace std::chrono_literals;
    const auto isEnded = [this] { return isEnded_; };
    std::unique_lock lock(mutex_);
    if (ended_.wait_for(lock, 1s, isEnded)) return;
    do {
        const std::size_t percent = done_.load(std::memory_order_relaxed) * 100 / total_;
        std::fprintf(stderr, "\r%s: loading, %zu %%\033[K", what_.c_str(), percent);
    } while (!ended_.wait_for(lock, 200ms, isEnded));
    std::fputs("\r\033[K", stderr);
}

}  // namespace QosAgent
