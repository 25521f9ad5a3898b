#pragma once

#include <sys/un.h>

#include <optional>
#include <string>
#include <variant>

namespace QosAgent {

/// The address of a Unix socket; nothing if the path is empty or too long for one.
std::optional<sockaddr_un> unixAddress(const std::string& path);

/// A path in the file system that this process alone may serve as a Unix socket, until it is
/// destroyed: it holds a lock on `PATH.lock`, and removes socket and lock in the end.
class SocketPath {
public:
    /// Takes the lock and removes the socket of a program that is gone. Returns why that cannot be
    /// done, if it cannot: another program serves the path, or something else lies there.
    static std::variant<SocketPath, std::string> take(const std::string& path);
    SocketPath(SocketPath&& other) noexcept;
    SocketPath& operator=(SocketPath&&) = delete;
    ~SocketPath();

    const std::string& path() const { return path_; }
    /// Makes the socket, with mode 0600, and listens. Returns a non-blocking descriptor that the
    /// caller owns; -1 and `errno` if the system refuses.
    int listen() const;

private:
    SocketPath(std::string path, int lock) : path_(std::move(path)), lock_(lock) {}

    std::string path_;
    int lock_;  ///< -1: moved from
};

}  // namespace QosAgent
