#include "agent/gnmi/rpc/Listener.h"

#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <utility>

namespace QosAgent::Gnmi {

Listener::Listener(ListeningSocket socket, Accept accept, Accept refuse)
    : socket_(std::move(socket)),
      accept_(std::move(accept)),
      refuse_(std::move(refuse)),
      epoll_(::epoll_create1(EPOLL_CLOEXEC)),
      stop_(::eventfd(0, EFD_CLOEXEC)) {
    for (const int descriptor : {socket_.descriptor(), stop_}) {
        epoll_event event{EPOLLIN, {.fd = descriptor}};
        ::epoll_ctl(epoll_, EPOLL_CTL_ADD, descriptor, &event);
    }
    thread_ = std::thread([this] { run(); });
}

Listener::~Listener() {
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(stop_, &one, sizeof one);
    thread_.join();
    for (const auto& [duplicate, isRefused] : watched_)
        ::close(duplicate);
    ::close(epoll_);
    ::close(stop_);
}

/// Notices when the connection is over, whoever ends it. gRPC owns the descriptor and shuts the
/// connection down before it closes it; a duplicate tells, without keeping the connection open.
bool Listener::watch(int descriptor, bool isRefused) {
    const int duplicate = ::fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    if (duplicate < 0) return false;
    epoll_event event{EPOLLHUP, {.fd = duplicate}};
    ::epoll_ctl(epoll_, EPOLL_CTL_ADD, duplicate, &event);
    watched_.emplace(duplicate, isRefused);
    if (!isRefused) ++accepted_;
    return true;
}

void Listener::forget(int duplicate) {
    const auto at = watched_.find(duplicate);
    if (!at->second) --accepted_;
    watched_.erase(at);
    // As long as gRPC has the connection open, to close the duplicate would not end the watch.
    ::epoll_ctl(epoll_, EPOLL_CTL_DEL, duplicate, nullptr);
    ::close(duplicate);
}

void Listener::acceptOne() {
    const int descriptor =
        ::accept4(socket_.descriptor(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (descriptor < 0) return;
    const bool isRefused = accepted_ >= kMostConnections;
    const bool isTooMuch = watched_.size() - accepted_ >= kMostRefused;
    if ((isRefused && isTooMuch) || !watch(descriptor, isRefused)) {
        ::close(descriptor);
        return;
    }
    (isRefused ? refuse_ : accept_)(descriptor);
}

void Listener::run() {
    std::array<epoll_event, 64> events;
    for (;;) {
        const int count = ::epoll_wait(epoll_, events.data(), static_cast<int>(events.size()), -1);
        for (int at = 0; at < count; ++at) {
            const int descriptor = events[static_cast<std::size_t>(at)].data.fd;
            if (descriptor == stop_) return;
            if (descriptor == socket_.descriptor())
                acceptOne();
            else
                forget(descriptor);
        }
    }
}

}  // namespace QosAgent::Gnmi
