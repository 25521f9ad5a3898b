#pragma once

#include <sys/socket.h>

#include <array>

namespace QosAgent {

/// Reads and discards the bytes that the client has sent. Closing a socket with unread bytes would
/// reset the connection, and the client would lose the last answer. Reads at most 1 MiB, because
/// the client may go on sending.
inline void passOverUnread(int fd) {
    std::array<char, 65536> bytes;
    for (int i = 0; i < 16 && ::recv(fd, bytes.data(), bytes.size(), MSG_DONTWAIT) > 0; ++i) {
    }
}

}  // namespace QosAgent
