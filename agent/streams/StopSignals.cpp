#include "agent/streams/StopSignals.h"

#include <cerrno>

namespace QosAgent {
namespace {

volatile std::sig_atomic_t stopRequested = 0;

void handle(int signal) {
    if (stopRequested != 0) {
        std::signal(signal, SIG_DFL);
        std::raise(signal);
    }
    stopRequested = 1;
}

}  // namespace

StopSignals::StopSignals() {
    stopRequested = 0;
    struct sigaction action {};
    action.sa_handler = handle;
    for (std::size_t i = 0; i < kSignals.size(); ++i)
        ::sigaction(kSignals[i], &action, &before_[i]);
}

StopSignals::~StopSignals() {
    for (std::size_t i = 0; i < kSignals.size(); ++i)
        ::sigaction(kSignals[i], &before_[i], nullptr);
}

bool StopSignals::isStopRequested() const {
    return stopRequested != 0;
}

bool StopSignals::waitReadable(int fd) const {
    std::array<pollfd, 1> waited{{{fd, POLLIN, 0}}};
    return wait(waited);
}

bool StopSignals::wait(std::span<pollfd> descriptors) const {
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    for (const int signal : kSignals)
        sigaddset(&blocked, signal);
    // Blocks the signals between the check and the wait, so that no signal is lost between them.
    ::sigprocmask(SIG_BLOCK, &blocked, &before);
    while (!isStopRequested() &&
           ::ppoll(descriptors.data(), descriptors.size(), nullptr, &before) < 0 &&
           errno == EINTR) {
        // Another signal ended the wait. A read now would see a pipe without writers as ended.
    }
    ::sigprocmask(SIG_SETMASK, &before, nullptr);
    return !isStopRequested();
}

}  // namespace QosAgent
