#include "agent/streams/StopSignals.h"

#include <poll.h>

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
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    for (const int signal : kSignals)
        sigaddset(&blocked, signal);
    // Blocked between the question and the wait: a signal then ends the wait, not falls between.
    ::sigprocmask(SIG_BLOCK, &blocked, &before);
    if (!isStopRequested()) {
        pollfd waited{fd, POLLIN, 0};
        ::ppoll(&waited, 1, nullptr, &before);
    }
    ::sigprocmask(SIG_SETMASK, &before, nullptr);
    return !isStopRequested();
}

}  // namespace QosAgent
