#pragma once

#include <optional>
#include <string>
#include <variant>

#include "agent/host/SocketPath.h"

namespace QosAgent {

/// A socket that listens at the address of a door: `HOST:PORT`, `[IPV6]:PORT` or `unix:PATH`. The
/// destructor closes it and removes what it left in the file system.
class ListeningSocket {
public:
    /// Who can reach it.
    enum class Reach {
        ownUser,   ///< it is a Unix socket, with mode 0600
        loopback,  ///< programs of this machine
        network,
    };

    /// Listens at the address; port 0 takes a free one. Returns one line that says why that fails,
    /// if it does.
    static std::variant<ListeningSocket, std::string> open(const std::string& address);
    ListeningSocket(ListeningSocket&& other) noexcept;
    ListeningSocket& operator=(ListeningSocket&&) = delete;
    ~ListeningSocket();

    /// Does not block. The socket owns it.
    int descriptor() const { return descriptor_; }
    /// The address as it turned out: with the port that was free.
    const std::string& address() const { return address_; }
    Reach reach() const { return reach_; }

private:
    ListeningSocket(int descriptor, std::string address, Reach reach)
        : descriptor_(descriptor), address_(std::move(address)), reach_(reach) {}
    static std::variant<ListeningSocket, std::string> openPath(const std::string& address);
    static std::variant<ListeningSocket, std::string> openPort(const std::string& address,
                                                               const std::string& host,
                                                               const std::string& port);

    int descriptor_;  ///< -1: moved from
    std::string address_;
    Reach reach_;
    std::optional<SocketPath> path_;  ///< of a Unix socket
};

}  // namespace QosAgent
