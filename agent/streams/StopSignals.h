#pragma once

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
    /// Waits until a read of the file would not block. False when asked to stop, before or
    /// meanwhile.
    bool waitReadable(int fd) const;
};

}  // namespace QosAgent
