#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

#include "agent/gnmi/rpc/Listener.h"

namespace QosAgent::Gnmi {

namespace {

constexpr int kBacklog = 128;

std::string reason(const std::string& address) {
    return address + ": " + std::strerror(errno);
}

std::variant<ListeningSocket, std::string> listenOnPath(const std::string& path) {
    const std::string address = "unix:" + path;
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof name.sun_path)
        return address + ": a path of 1 to " + std::to_string(sizeof name.sun_path - 1) + " bytes";
    std::memcpy(name.sun_path, path.data(), path.size());

    ListeningSocket socket{-1, address, true, path, -1};
    socket.lock = ::open((path + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (socket.lock < 0) return reason(address + ".lock");
    if (::flock(socket.lock, LOCK_EX | LOCK_NB) != 0) {
        ::close(socket.lock);
        return address + ": in use by another program";
    }
    struct stat status {};
    if (::lstat(path.c_str(), &status) == 0 && !S_ISSOCK(status.st_mode)) {
        ::close(socket.lock);
        return address + ": something that is no socket is there";
    }
    ::unlink(path.c_str());
    socket.descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    // The mode is right from the first moment, for nobody may connect before `listen`.
    const bool isListening =
        ::bind(socket.descriptor, reinterpret_cast<const sockaddr*>(&name), sizeof name) == 0 &&
        ::chmod(path.c_str(), 0600) == 0 && ::listen(socket.descriptor, kBacklog) == 0;
    if (isListening) return socket;
    const std::string why = reason(address);
    close(socket);
    return why;
}

bool isLoopback(const sockaddr& address) {
    if (address.sa_family == AF_INET) {
        const auto& name = reinterpret_cast<const sockaddr_in&>(address);
        return ntohl(name.sin_addr.s_addr) >> 24 == 127;
    }
    const auto& name = reinterpret_cast<const sockaddr_in6&>(address);
    return IN6_IS_ADDR_LOOPBACK(&name.sin6_addr) != 0;
}

/// The port that a socket has.
std::string portOf(int descriptor) {
    sockaddr_storage name{};
    socklen_t size = sizeof name;
    ::getsockname(descriptor, reinterpret_cast<sockaddr*>(&name), &size);
    const auto port = name.ss_family == AF_INET ? reinterpret_cast<sockaddr_in&>(name).sin_port
                                                : reinterpret_cast<sockaddr_in6&>(name).sin6_port;
    return std::to_string(ntohs(port));
}

bool isPort(const std::string& text) {
    std::uint16_t port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    return error == std::errc() && end == text.data() + text.size();
}

using Addresses = std::unique_ptr<addrinfo, decltype(&freeaddrinfo)>;

std::variant<Addresses, std::string> resolve(const std::string& address, std::string host,
                                             const std::string& port) {
    if (host.starts_with('[') && host.ends_with(']')) host = host.substr(1, host.size() - 2);
    addrinfo hints{};
    hints.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (const int error = getaddrinfo(host.c_str(), port.c_str(), &hints, &found); error != 0)
        return address + ": " + gai_strerror(error);
    return Addresses(found, freeaddrinfo);
}

}  // namespace

std::variant<ListeningSocket, std::string> listenOn(const std::string& address) {
    if (address.starts_with("unix:")) return listenOnPath(address.substr(5));
    const std::size_t colon = address.rfind(':');
    if (colon == std::string::npos || colon == 0 || colon + 1 == address.size())
        return address + ": not of the form HOST:PORT, [IPV6]:PORT or unix:PATH";
    const std::string host = address.substr(0, colon);
    const std::string port = address.substr(colon + 1);
    if (!isPort(port)) return address + ": the port is no number up to 65535";
    auto resolved = resolve(address, host, port);
    if (auto* why = std::get_if<std::string>(&resolved)) return std::move(*why);
    const addrinfo& found = *std::get<Addresses>(resolved);

    ListeningSocket socket;
    socket.isLocal = isLoopback(*found.ai_addr);
    socket.descriptor =
        ::socket(found.ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, found.ai_protocol);
    // Connections of an earlier run that are still closing do not keep the address.
    const int yes = 1;
    ::setsockopt(socket.descriptor, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    if (::bind(socket.descriptor, found.ai_addr, found.ai_addrlen) != 0 ||
        ::listen(socket.descriptor, kBacklog) != 0) {
        const std::string why = reason(address);
        close(socket);
        return why;
    }
    socket.address = host + ':' + portOf(socket.descriptor);
    return socket;
}

void close(ListeningSocket& socket) {
    if (socket.descriptor >= 0) ::close(socket.descriptor);
    if (!socket.path.empty()) ::unlink(socket.path.c_str());
    // The file of the lock stays: to remove it would let two programs lock two files of one name.
    if (socket.lock >= 0) ::close(socket.lock);
    socket = {};
}

}  // namespace QosAgent::Gnmi
