#include "agent/streams/StopSignals.h"

#include <poll.h>

#include <csignal>

namespace QosAgent {
namespace {

volatile std::sig_atomic_t stopRequested = 0;

constexpr int kSignals[] = {SIGINT, SIGTERM};

void handle(int signal) {
    if (stopRequested != 0) {
        std::signal(signal, SIG_DFL);
        std::raise(signal);
    }
    stopRequested = 1;
}

void dispositionIs(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    for (const int signal : kSignals)
        ::sigaction(signal, &action, nullptr);
}

}  // namespace

StopSignals::StopSignals() {
    stopRequested = 0;
    dispositionIs(handle);
}

StopSignals::~StopSignals() {
    dispositionIs(SIG_DFL);
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
