#pragma once

#include <array>
#include <csignal>

namespace QosAgent {

/// While it lives, the signals that a loop receives are blocked in the calling thread and in the
/// threads that it starts.
class BlockedSignals {
public:
    static constexpr std::array kStopping{SIGINT, SIGTERM};
    static constexpr int kReloading = SIGHUP;

    BlockedSignals() {
        sigset_t signals;
        sigemptyset(&signals);
        for (const int signal : kStopping)
            sigaddset(&signals, signal);
        sigaddset(&signals, kReloading);
        ::pthread_sigmask(SIG_BLOCK, &signals, &before_);
    }
    ~BlockedSignals() { release(); }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;

    /// Lets the process have them as before, those that arrived meanwhile as well.
    void release() const { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

private:
    sigset_t before_{};
};

}  // namespace QosAgent
