#pragma once

#include <memory>
#include <unordered_map>

#include "agent/host/SocketPath.h"
#include "agent/socket/Connection.h"

namespace QosAgent {

/// Serves change streams on a Unix socket: accepts connections and owns them.
class SocketServer {
public:
    /// As many connections are open; one more is told so and closed.
    static constexpr std::size_t kMostConnections = 256;

    /// Loop, service and feed must outlive the server. `fd` listens at the path; the server owns
    /// it.
    SocketServer(SocketPath path, int fd, Loop& loop, Service& service, Feed& feed);
    /// Writes to each client what it takes at once, and closes all connections.
    ~SocketServer();
    std::size_t connections() const { return connections_.size(); }
    SocketServer(const SocketServer&) = delete;
    SocketServer& operator=(const SocketServer&) = delete;

private:
    void accept();
    bool acceptOne();
    /// There is no descriptor for one more connection: closes it all the same, or it would be
    /// ready to be accepted for ever.
    void turnAway();

    SocketPath path_;
    int fd_;
    int spare_;  ///< an open descriptor, to be closed where one is needed
    ConnectionHost host_;
    std::unordered_map<Connection*, std::shared_ptr<Connection>> connections_;
    Loop::WatchPtr watch_;
};

}  // namespace QosAgent
