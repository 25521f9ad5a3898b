#include "agent/socket/SocketServer.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "agent/socket/AnswerLines.h"
#include "agent/socket/Unread.h"

namespace QosAgent {
namespace {

int spareDescriptor() {
    return ::open("/dev/null", O_RDONLY | O_CLOEXEC);
}

}  // namespace

SocketServer::SocketServer(SocketPath path, int fd, Loop& loop, Service& service, Feed& feed)
    : path_(std::move(path)),
      fd_(fd),
      spare_(spareDescriptor()),
      host_{loop, service, feed, 0, [this](Connection& ended) { connections_.erase(&ended); }},
      watch_(loop.watch(fd, true, false, [this] { accept(); })) {}

SocketServer::~SocketServer() {
    watch_.reset();
    while (!connections_.empty()) {
        const std::shared_ptr<Connection> connection = connections_.begin()->second;
        connection->close();
    }
    ::close(spare_);
    ::close(fd_);
}

void SocketServer::accept() {
    // A few at a time, so that those who are connected get their turn.
    for (int i = 0; i < 16 && acceptOne(); ++i) {
    }
}

bool SocketServer::acceptOne() {
    const int fd = ::accept4(fd_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (fd < 0) {
        if (errno == EMFILE || errno == ENFILE) turnAway();
        return errno == EINTR || errno == ECONNABORTED;
    }
    if (connections_.size() >= kMostConnections) {
        const std::string line = refusedLine(1, {1, "too many connections are open: at most 256"});
        ::send(fd, line.data(), line.size(), MSG_NOSIGNAL);
        passOverUnread(fd);
        ::close(fd);
        return true;
    }
    const auto connection = std::make_shared<Connection>(host_, fd);
    connections_.emplace(connection.get(), connection);
    connection->start();
    return true;
}

void SocketServer::turnAway() {
    ::close(std::exchange(spare_, -1));
    const int fd = ::accept4(fd_, nullptr, nullptr, SOCK_CLOEXEC);
    if (fd >= 0) ::close(fd);
    spare_ = spareDescriptor();
}

}  // namespace QosAgent
