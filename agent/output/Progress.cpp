#include "agent/output/Progress.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "agent/json/Visible.h"
#include "agent/output/Terminal.h"

namespace QosAgent {
namespace {

constexpr const char* kRedraw = "\r";
constexpr const char* kClearRest = "\033[K";

}  // namespace

Progress::Progress(std::string_view what) : what_(visible(what)) {
    const Terminal terminal = terminalOn(STDERR_FILENO);
    columns_ = terminal.columns;
    if (terminal.canRedraw) drawer_ = std::thread([this] { draw(); });
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
        std::fprintf(stderr, "%s%s%s", kRedraw, line().c_str(), kClearRest);
    } while (!ended_.wait_for(lock, 200ms, isEnded));
    std::fprintf(stderr, "%s%s", kRedraw, kClearRest);
}

std::string Progress::line() const {
    std::string doing = ": loading";
    const std::size_t total = total_.load(std::memory_order_relaxed);
    if (total != 0)
        doing += ", " + std::to_string(done_.load(std::memory_order_relaxed) * 100 / total) + " %";
    // A line that is longer than the terminal could not be redrawn. The end of a path says most.
    const std::size_t room = columns_ - std::min(columns_, doing.size() + 1);
    return what_.substr(what_.size() - std::min(what_.size(), room)) + doing;
}

}  // namespace QosAgent
