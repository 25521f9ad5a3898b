#pragma once

#include <sys/socket.h>

#include <array>

namespace QosAgent {

/// Reads over what the client has sent already. To close a socket with bytes unread would reset the
/// connection, and the client would not see what it was told last. Reads 1 MiB at most, as the
/// client may send on and on.
inline void passOverUnread(int fd) {
    std::array<char, 65536> bytes;
    for (int i = 0; i < 16 && ::recv(fd, bytes.data(), bytes.size(), MSG_DONTWAIT) > 0; ++i) {
    }
}

}  // namespace QosAgent
