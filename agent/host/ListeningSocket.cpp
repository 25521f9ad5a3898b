#include "agent/host/ListeningSocket.h"

#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>

namespace QosAgent {
namespace {

constexpr const char* kUnix = "unix:";

std::string reason(const std::string& address, int error) {
    return address + ": " + std::strerror(error);
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

/// Returns the error of the resolver as the second alternative.
std::variant<Addresses, int> resolve(std::string host, const std::string& port) {
    if (host.starts_with('[') && host.ends_with(']')) host = host.substr(1, host.size() - 2);
    addrinfo hints{};
    hints.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (const int error = getaddrinfo(host.c_str(), port.c_str(), &hints, &found); error != 0)
        return error;
    return Addresses(found, freeaddrinfo);
}

/// A listening descriptor; -1 and `errno` if the system refuses.
int listenAt(const addrinfo& place) {
    const int descriptor =
        ::socket(place.ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, place.ai_protocol);
    if (descriptor < 0) return -1;
    // Connections of an earlier run that are still closing do not keep the address.
    const int yes = 1;
    ::setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    if (::bind(descriptor, place.ai_addr, place.ai_addrlen) == 0 &&
        ::listen(descriptor, SOMAXCONN) == 0)
        return descriptor;
    const int error = errno;
    ::close(descriptor);
    errno = error;
    return -1;
}

}  // namespace

ListeningSocket::ListeningSocket(ListeningSocket&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)),
      address_(std::move(other.address_)),
      reach_(other.reach_),
      path_(std::move(other.path_)) {}

ListeningSocket::~ListeningSocket() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

std::variant<ListeningSocket, std::string> ListeningSocket::openPath(const std::string& address) {
    auto taken = SocketPath::take(address.substr(std::strlen(kUnix)));
    if (const auto* fault = std::get_if<std::string>(&taken)) return address + ": " + *fault;
    auto& path = std::get<SocketPath>(taken);
    const int descriptor = path.listen();
    if (descriptor < 0) return reason(address, errno);
    ListeningSocket socket(descriptor, address, Reach::ownUser);
    socket.path_.emplace(std::move(path));
    return socket;
}

std::variant<ListeningSocket, std::string> ListeningSocket::openPort(const std::string& address,
                                                                     const std::string& host,
                                                                     const std::string& port) {
    const auto resolved = resolve(host, port);
    if (const int* error = std::get_if<int>(&resolved))
        return address + ": " + gai_strerror(*error);
    const addrinfo& place = *std::get<Addresses>(resolved);
    const int descriptor = listenAt(place);
    if (descriptor < 0) return reason(address, errno);
    return ListeningSocket(descriptor, host + ':' + portOf(descriptor),
                           isLoopback(*place.ai_addr) ? Reach::loopback : Reach::network);
}

std::variant<ListeningSocket, std::string> ListeningSocket::open(const std::string& address) {
    if (address.starts_with(kUnix)) return openPath(address);
    const std::size_t colon = address.rfind(':');
    if (colon == std::string::npos || colon == 0 || colon + 1 == address.size())
        return address + ": not of the form HOST:PORT, [IPV6]:PORT or unix:PATH";
    const std::string port = address.substr(colon + 1);
    if (!isPort(port)) return address + ": the port is no number up to 65535";
    return openPort(address, address.substr(0, colon), port);
}

}  // namespace QosAgent
