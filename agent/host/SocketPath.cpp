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

/// Whether the lock's file is still the one of that name: whoever held it before removes it.
bool isCurrent(int lock, const std::string& name) {
    struct stat held {};
    struct stat named {};
    return ::fstat(lock, &held) == 0 && ::stat(name.c_str(), &named) == 0 &&
           held.st_ino == named.st_ino && held.st_dev == named.st_dev;
}

/// Returns the locked descriptor; -1 and `errno` if it cannot be had, `EWOULDBLOCK` if another
/// process has it.
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

/// Whether a program accepts connections at the socket, whatever lock it holds.
bool isServed(const sockaddr_un& address) {
    const int probe = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const int result =
        ::connect(probe, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    const bool isRefused = result != 0 && (errno == ECONNREFUSED || errno == ENOENT);
    ::close(probe);
    return !isRefused;
}

/// Removes a socket that nobody serves. Returns why it cannot be removed; empty if nothing is there
/// any more.
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
    // While the lock is held: whoever opens the file from now on gets one of its own.
    ::unlink(lockOf(path_).c_str());
    ::close(lock_);
}

int SocketPath::listen() const {
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const auto address = unixAddress(path_);
    // Before it has a name: nobody connects while it has another mode.
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
