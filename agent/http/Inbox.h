#pragma once

#include <functional>
#include <mutex>
#include <vector>

namespace QosAgent::Http {

/// Brings tasks of any thread to the door's thread. Tasks that are posted after the door has closed
/// are never run: they must not own what only that thread may destroy.
class Inbox {
public:
    using Task = std::function<void()>;

    Inbox();
    ~Inbox();
    Inbox(const Inbox&) = delete;
    Inbox& operator=(const Inbox&) = delete;

    /// Any thread.
    void post(Task task);
    /// Readable while tasks wait.
    int descriptor() const { return descriptor_; }
    /// Runs the tasks that wait. Door's thread.
    void run();

private:
    int descriptor_;
    std::mutex mutex_;  ///< guards `tasks_`
    std::vector<Task> tasks_;
};

}  // namespace QosAgent::Http
