#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <systemd/sd-daemon.h>
#include <systemd/sd-event.h>
#include <unistd.h>

#include <mutex>
#include <system_error>
#include <utility>
#include <vector>

#include "agent/loop/LoopModule.h"

namespace QosAgent {
namespace {

using Task = Loop::Task;

/// The library returns negated error numbers.
int checked(int result, const char* call) {
    if (result < 0) throw std::system_error(-result, std::generic_category(), call);
    return result;
}

/// A source of the library and the handler that it calls.
class EventSource {
public:
    explicit EventSource(Task handler) : handler_(std::make_shared<Task>(std::move(handler))) {}
    ~EventSource() { sd_event_source_disable_unref(source_); }
    EventSource(const EventSource&) = delete;
    EventSource& operator=(const EventSource&) = delete;

    sd_event_source** place() { return &source_; }
    sd_event_source* get() const { return source_; }
    /// The handler may destroy this object, and so itself: it is held meanwhile.
    static int call(void* self) {
        const std::shared_ptr<Task> handler = static_cast<EventSource*>(self)->handler_;
        (*handler)();
        return 0;
    }

private:
    sd_event_source* source_ = nullptr;
    std::shared_ptr<Task> handler_;
};

int handleReady(sd_event_source*, int, std::uint32_t, void* self) {
    return EventSource::call(self);
}
int handleDeferred(sd_event_source*, void* self) {
    return EventSource::call(self);
}
int handleSignal(sd_event_source*, const signalfd_siginfo*, void* self) {
    return EventSource::call(self);
}
int handleTime(sd_event_source*, std::uint64_t, void* self) {
    return EventSource::call(self);
}

class DescriptorWatch final : public Loop::Watch {
public:
    DescriptorWatch(sd_event* event, int fd, bool readable, bool writable, Task handler)
        : source_(std::move(handler)) {
        const int added = sd_event_add_io(event, source_.place(), fd, events(readable, writable),
                                          handleReady, &source_);
        isAlwaysReady_ = added == -EPERM;
        if (!isAlwaysReady_) {
            checked(added, "sd_event_add_io");
            return;
        }
        checked(sd_event_add_defer(event, source_.place(), handleDeferred, &source_),
                "sd_event_add_defer");
        interestIs(readable, writable);
    }

    void interestIs(bool readable, bool writable) override {
        if (isAlwaysReady_)
            sd_event_source_set_enabled(source_.get(),
                                        readable || writable ? SD_EVENT_ON : SD_EVENT_OFF);
        else
            sd_event_source_set_io_events(source_.get(), events(readable, writable));
    }

private:
    static std::uint32_t events(bool readable, bool writable) {
        return (readable ? EPOLLIN : 0U) | (writable ? EPOLLOUT : 0U);
    }

    EventSource source_;
    bool isAlwaysReady_;
};

class PlainSource final : public Loop::Source {
public:
    explicit PlainSource(Task handler) : source(std::move(handler)) {}
    EventSource source;
};

/// The tasks that other threads posted. A descriptor becomes readable with the first.
class Posted {
public:
    Posted() : fd_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
        if (fd_ < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
    }
    ~Posted() { ::close(fd_); }
    Posted(const Posted&) = delete;
    Posted& operator=(const Posted&) = delete;

    int fd() const { return fd_; }
    void add(Task task) {
        const std::lock_guard lock(mutex_);
        tasks_.push_back(std::move(task));
        if (tasks_.size() == 1) ::eventfd_write(fd_, 1);
    }
    /// Runs those that are there; what they post runs in the loop's next turn.
    void runAll() {
        std::vector<Task> tasks;
        {
            const std::lock_guard lock(mutex_);
            eventfd_t count = 0;
            ::eventfd_read(fd_, &count);
            tasks.swap(tasks_);
        }
        for (Task& task : tasks)
            std::exchange(task, nullptr)();
    }

private:
    int fd_;
    std::mutex mutex_;
    std::vector<Task> tasks_;
};

class SystemdLoop final : public Loop {
public:
    SystemdLoop() {
        checked(sd_event_new(&event_), "sd_event_new");
        postedWatch_ = watch(posted_.fd(), true, false, [this] { posted_.runAll(); });
    }
    ~SystemdLoop() override {
        postedWatch_.reset();
        sd_event_unref(event_);
    }
    SystemdLoop(const SystemdLoop&) = delete;
    SystemdLoop& operator=(const SystemdLoop&) = delete;

    WatchPtr watch(int fd, bool readable, bool writable, Task handler) override {
        return std::make_unique<DescriptorWatch>(event_, fd, readable, writable,
                                                 std::move(handler));
    }
    SourcePtr onSignal(int signal, Task handler) override {
        auto source = std::make_unique<PlainSource>(std::move(handler));
        checked(sd_event_add_signal(event_, source->source.place(), signal, handleSignal,
                                    &source->source),
                "sd_event_add_signal");
        return source;
    }
    SourcePtr after(std::chrono::milliseconds time, Task handler) override {
        const auto microseconds = std::chrono::microseconds(time).count();
        auto source = std::make_unique<PlainSource>(std::move(handler));
        checked(sd_event_add_time_relative(event_, source->source.place(), CLOCK_MONOTONIC,
                                           static_cast<std::uint64_t>(microseconds), 0, handleTime,
                                           &source->source),
                "sd_event_add_time_relative");
        return source;
    }
    void post(Task task) override { posted_.add(std::move(task)); }

    void run() override { checked(sd_event_loop(event_), "sd_event_loop"); }
    void stop() override { sd_event_exit(event_, 0); }

    void notify(const std::string& state) override { sd_notify(0, state.c_str()); }
    void feedWatchdog() override { checked(sd_event_set_watchdog(event_, 1), "watchdog"); }

private:
    sd_event* event_ = nullptr;
    Posted posted_;
    WatchPtr postedWatch_;
};

std::unique_ptr<Loop> makeLoop() {
    return std::make_unique<SystemdLoop>();
}

}  // namespace
}  // namespace QosAgent

extern "C" [[gnu::visibility("default")]] const QosAgent::LoopModule* qosAgentLoop() {
    static const QosAgent::LoopModule module{QosAgent::kLoopVersion, QosAgent::makeLoop};
    return &module;
}
