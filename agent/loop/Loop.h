#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace QosAgent {

/// An event loop: runs handlers on one thread as descriptors become ready, signals arrive, timers
/// elapse, or tasks are posted. An idle loop makes no wake-ups. Handlers may create and destroy
/// anything of the loop, themselves included.
class Loop {
public:
    using Task = std::function<void()>;

    /// Something that the loop waits for; to destroy it ends the waiting.
    class Source {
    public:
        virtual ~Source() = default;
    };
    /// A watched descriptor.
    class Watch : public Source {
    public:
        /// Which readiness the handler is called for. With neither, only errors are reported.
        virtual void interestIs(bool readable, bool writable) = 0;
    };
    using SourcePtr = std::unique_ptr<Source>;
    using WatchPtr = std::unique_ptr<Watch>;

    virtual ~Loop() = default;

    /// Calls the handler whenever the descriptor is ready, has failed, or was hung up. A file that
    /// cannot be waited for, such as a regular one, is always ready. Borrows the descriptor: the
    /// watch must be destroyed before the descriptor is closed.
    virtual WatchPtr watch(int fd, bool readable, bool writable, Task handler) = 0;
    /// Calls the handler when the process receives the signal. The caller must have blocked the
    /// signal in all threads.
    virtual SourcePtr onSignal(int signal, Task handler) = 0;
    /// Calls the handler once, after this time.
    virtual SourcePtr after(std::chrono::milliseconds time, Task handler) = 0;
    /// Runs the task on the loop's thread, after the tasks posted before. Any thread may call it.
    virtual void post(Task task) = 0;

    /// Runs until `stop`. Handlers must not throw.
    virtual void run() = 0;
    virtual void stop() = 0;

    /// Tells the service manager, if there is one: `READY=1`, and so on.
    virtual void notify(const std::string& state) = 0;
    /// Sends `WATCHDOG=1` regularly if the service manager asked for it.
    virtual void feedWatchdog() = 0;
};

}  // namespace QosAgent
