#pragma once

#include <sys/socket.h>

#include <string>

#include "agent/host/SocketPath.h"
#include "tests/agent/support/Process.h"

namespace QosAgent {

/// A client on a Unix socket.
class SocketClient {
public:
    explicit SocketClient(const std::string& path)
        : source_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        const auto address = unixAddress(path);
        EXPECT_EQ(
            ::connect(source_.fd(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address),
            0)
            << path;
    }

    /// Sends all of the text; false if the other side takes no more.
    bool send(std::string_view text) const {
        while (!text.empty()) {
            const ssize_t count = ::send(source_.fd(), text.data(), text.size(), MSG_NOSIGNAL);
            if (count <= 0) return false;
            text.remove_prefix(static_cast<std::size_t>(count));
        }
        return true;
    }
    void sendLine(const std::string& line) const { EXPECT_TRUE(send(line + '\n')) << line; }
    /// What the line is answered with, up to an echo of the client's own.
    std::string ask(const std::string& line) {
        sendLine(line);
        sendLine(R"({"echo":"end of answer"})");
        std::string answer;
        for (std::string read = this->line(); read != "# end of answer"; read = this->line()) {
            if (read.empty()) break;
            answer += read + '\n';
        }
        return answer;
    }
    void closeSending() const { ::shutdown(source_.fd(), SHUT_WR); }
    void close() { source_.close(); }
    std::string line() { return source_.line(); }
    std::string rest() { return source_.rest(); }
    int fd() const { return source_.fd(); }

private:
    LineSource source_;
};

}  // namespace QosAgent
