#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace QosAgent {

/// An event loop: runs handlers on one thread as descriptors become ready, signals arrive, timers
/// elapse, or tasks are posted. An idle loop makes no wake-ups. Handlers may create and destroy any
/// source of the loop, including their own.
class Loop {
public:
    using Task = std::function<void()>;

    /// An event source. The loop waits for it until it is destroyed.
    class Source {
    public:
        virtual ~Source() = default;
    };
    /// A watched descriptor.
    class Watch : public Source {
    public:
        /// Selects the events that call the handler. With neither, only errors do.
        virtual void interestIs(bool readable, bool writable) = 0;
    };
    using SourcePtr = std::unique_ptr<Source>;
    using WatchPtr = std::unique_ptr<Watch>;

    virtual ~Loop() = default;

    /// Calls the handler whenever the descriptor is ready, has an error, or was hung up. A file
    /// that cannot be polled, such as a regular one, is always ready. Borrows the descriptor: the
    /// caller must destroy the watch before it closes the descriptor.
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

    /// Sends a notice such as `READY=1` to the service manager, if there is one.
    virtual void notify(const std::string& state) = 0;
    /// Sends `WATCHDOG=1` regularly if the service manager asked for it.
    virtual void feedWatchdog() = 0;
};

}  // namespace QosAgent
