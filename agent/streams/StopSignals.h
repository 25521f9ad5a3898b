#pragma once

#include <poll.h>

#include <array>
#include <csignal>
#include <span>

namespace QosAgent {

/// While it lives, the first SIGINT or SIGTERM asks the process to stop reading; a second one ends
/// it at once. One at a time.
class StopSignals {
public:
    StopSignals();
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    bool isStopRequested() const;
    /// Waits until one of the descriptors is ready; passes over negative ones. False when asked to
    /// stop, before or meanwhile.
    bool wait(std::span<pollfd> descriptors) const;
    /// Waits until a read of the file would not block. False when asked to stop, before or
    /// meanwhile.
    bool waitReadable(int fd) const;

private:
    static constexpr std::array kSignals{SIGINT, SIGTERM};

    std::array<struct sigaction, kSignals.size()> before_{};
};

}  // namespace QosAgent
