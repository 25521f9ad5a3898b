#include "agent/host/SocketPath.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace QosAgent {
namespace {

constexpr const char* kInUse = "another program is serving it";

std::string lockOf(const std::string& path) {
    return path + ".lock";
}

/// Returns true if the lock's file still has this name: the previous holder removes the file.
bool isCurrent(int lock, const std::string& name) {
    struct stat held {};
    struct stat named {};
    return ::fstat(lock, &held) == 0 && ::stat(name.c_str(), &named) == 0 &&
           held.st_ino == named.st_ino && held.st_dev == named.st_dev;
}

/// Returns the locked descriptor. Returns -1 and sets `errno` if that fails; `EWOULDBLOCK` if
/// another process holds the lock.
int takeLock(const std::string& name) {
    for (;;) {
        const int lock = ::open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
        if (lock < 0) return -1;
        if (::flock(lock, LOCK_EX | LOCK_NB) == 0 && isCurrent(lock, name)) return lock;
        const int error = errno;
        const bool isTaken = error == EWOULDBLOCK && isCurrent(lock, name);
        ::close(lock);
        errno = error;
        if (isTaken) return -1;
    }
}

/// Returns true if a program accepts connections at the socket, even without the lock.
bool isServed(const sockaddr_un& address) {
    const int probe = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const int result =
        ::connect(probe, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    const bool isRefused = result != 0 && (errno == ECONNREFUSED || errno == ENOENT);
    ::close(probe);
    return !isRefused;
}

/// Removes a socket that no program serves any more. Returns a message if that fails; empty if the
/// path is free.
std::string removeAbandoned(const sockaddr_un& address) {
    const char* path = address.sun_path;
    struct stat there {};
    if (::lstat(path, &there) != 0) return errno == ENOENT ? "" : std::strerror(errno);
    if (!S_ISSOCK(there.st_mode)) return "something else than a socket is there";
    if (isServed(address)) return kInUse;
    return ::unlink(path) == 0 ? "" : std::strerror(errno);
}

}  // namespace

std::optional<sockaddr_un> unixAddress(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof address.sun_path) return {};
    path.copy(address.sun_path, path.size());
    return address;
}

std::variant<SocketPath, std::string> SocketPath::take(const std::string& path) {
    const auto address = unixAddress(path);
    if (!address) return path.empty() ? "the path is empty" : "the path is too long for a socket";
    const int lock = takeLock(lockOf(path));
    if (lock < 0) return errno == EWOULDBLOCK ? kInUse : std::strerror(errno);
    std::string fault = removeAbandoned(*address);
    if (fault.empty()) return SocketPath(path, lock);
    if (fault != kInUse) ::unlink(lockOf(path).c_str());
    ::close(lock);
    return fault;
}

SocketPath::SocketPath(SocketPath&& other) noexcept
    : path_(std::move(other.path_)), lock_(std::exchange(other.lock_, -1)) {}

SocketPath::~SocketPath() {
    if (lock_ < 0) return;
    ::unlink(path_.c_str());
    // The lock is still held: a process that opens the file from now on creates a new one.
    ::unlink(lockOf(path_).c_str());
    ::close(lock_);
}

int SocketPath::listen() const {
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const auto address = unixAddress(path_);
    // Before `bind` gives it a name, so that no client can connect while it has another mode.
    if (fd >= 0 && ::fchmod(fd, 0600) == 0 &&
        ::bind(fd, reinterpret_cast<const sockaddr*>(&*address), sizeof *address) == 0 &&
        ::listen(fd, SOMAXCONN) == 0)
        return fd;
    const int error = errno;
    if (fd >= 0) ::close(fd);
    errno = error;
    return -1;
}

}  // namespace QosAgent
