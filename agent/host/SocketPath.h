#pragma once

#include <sys/un.h>

#include <optional>
#include <string>
#include <variant>

namespace QosAgent {

/// Returns the address of a Unix socket; nothing if the path is empty or too long.
std::optional<sockaddr_un> unixAddress(const std::string& path);

/// A claim to a path at which only this process may serve a Unix socket. Holds a lock on
/// `PATH.lock`. The destructor removes the socket and the lock.
class SocketPath {
public:
    /// Takes the lock, and removes the socket of a program that ended. Returns a message if another
    /// program serves the path, or if another file is there.
    static std::variant<SocketPath, std::string> take(const std::string& path);
    SocketPath(SocketPath&& other) noexcept;
    SocketPath& operator=(SocketPath&&) = delete;
    ~SocketPath();

    const std::string& path() const { return path_; }
    /// Creates the socket, with mode 0600, and listens. Returns a non-blocking descriptor that the
    /// caller owns; -1 with `errno` on failure.
    int listen() const;

private:
    SocketPath(std::string path, int lock) : path_(std::move(path)), lock_(lock) {}

    std::string path_;
    int lock_;  ///< -1: moved from
};

}  // namespace QosAgent
