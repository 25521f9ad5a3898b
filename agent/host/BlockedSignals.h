#pragma once

#include <array>
#include <csignal>

namespace QosAgent {

/// Blocks the signals that a loop receives, in the calling thread and the threads that it starts,
/// as long as this object exists.
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

    /// Unblocks the signals; pending ones are delivered.
    void release() const { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

private:
    sigset_t before_{};
};

}  // namespace QosAgent
