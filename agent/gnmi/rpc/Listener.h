#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <thread>

#include "agent/host/ListeningSocket.h"

namespace QosAgent::Gnmi {

/// Accepts connections on a thread of its own and keeps count of those that are open.
class Listener {
public:
    static constexpr std::size_t kMostConnections = 64;
    /// So many more are told that there are too many; the next ones are closed at once.
    static constexpr std::size_t kMostRefused = 64;

    /// `accept` is given each connection's descriptor, which it then owns; `refuse` those that are
    /// too many. Takes the socket over.
    using Accept = std::function<void(int descriptor)>;
    Listener(ListeningSocket socket, Accept accept, Accept refuse);
    /// Nothing is accepted any more when this returns, and the address is free.
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

private:
    void run();
    void acceptOne();
    bool watch(int descriptor, bool isRefused);
    void forget(int duplicate);

    ListeningSocket socket_;
    Accept accept_;
    Accept refuse_;
    int epoll_;
    int stop_;
    /// Duplicates of the connections' descriptors, and whether the connection was refused.
    std::map<int, bool> watched_;
    std::size_t accepted_ = 0;
    std::thread thread_;
};

}  // namespace QosAgent::Gnmi
