#pragma once

#include <mutex>

#include "platform/Orin/ThreadControl.h"

namespace Orin {

/// Holds a mutex if several threads are active; otherwise does nothing.
class ThreadLock {
public:
    explicit ThreadLock(std::mutex& mutex)
        : mutex_(mutex), isLocked_(ThreadControl::severalThreadsActive()) {
        if (isLocked_) mutex_.lock();
    }
    ~ThreadLock() {
        if (isLocked_) mutex_.unlock();
    }
    ThreadLock(const ThreadLock&) = delete;
    ThreadLock& operator=(const ThreadLock&) = delete;

private:
    std::mutex& mutex_;
    const bool isLocked_;
};

}  // namespace Orin
