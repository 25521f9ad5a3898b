#include "agent/http/Inbox.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>
#include <utility>

namespace QosAgent::Http {

Inbox::Inbox() : descriptor_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (descriptor_ < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
}

Inbox::~Inbox() {
    ::close(descriptor_);
}

void Inbox::post(Task task) {
    {
        const std::lock_guard lock(mutex_);
        tasks_.push_back(std::move(task));
        if (tasks_.size() > 1) return;
    }
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(descriptor_, &one, sizeof one);
}

void Inbox::run() {
    std::uint64_t count = 0;
    [[maybe_unused]] const auto taken = ::read(descriptor_, &count, sizeof count);
    std::vector<Task> tasks;
    {
        const std::lock_guard lock(mutex_);
        tasks.swap(tasks_);
    }
    for (const Task& task : tasks)
        task();
}

}  // namespace QosAgent::Http
