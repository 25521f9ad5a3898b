#pragma once

#include <poll.h>

#include <array>
#include <csignal>
#include <span>

namespace QosAgent {

/// As long as this object exists, the first SIGINT or SIGTERM asks the process to stop reading, and
/// a second one ends it at once. There must be at most one such object.
class StopSignals {
public:
    StopSignals();
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    bool isStopRequested() const;
    /// Waits until one of the descriptors is ready; ignores negative ones. Returns false if a
    /// signal asked to stop, before or during the wait.
    bool wait(std::span<pollfd> descriptors) const;
    /// Waits until a read of the file would not block. Returns false if a signal asked to stop,
    /// before or during the wait.
    bool waitReadable(int fd) const;

private:
    static constexpr std::array kSignals{SIGINT, SIGTERM};

    std::array<struct sigaction, kSignals.size()> before_{};
};

}  // namespace QosAgent
