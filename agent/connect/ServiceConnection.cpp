#include "agent/connect/ServiceConnection.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <limits>
#include <random>
#include <utility>

#include "agent/host/SocketPath.h"

namespace QosAgent {
namespace {

/// An answer is one line, however long.
constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max() / 2;

std::string randomText() {
    std::random_device random;
    return std::to_string(random()) + std::to_string(random());
}

}  // namespace

ServiceConnection::ServiceConnection(const std::string& path)
    : fd_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)),
      lines_(kNoLimit),
      session_("qos-agent client " + randomText() + ' ') {
    const auto address = unixAddress(path);
    if (!address)
        fault_ = "the path is too long for a socket";
    else if (::connect(fd_, reinterpret_cast<const sockaddr*>(&*address), sizeof *address) != 0)
        broke(std::strerror(errno));
}

ServiceConnection::~ServiceConnection() {
    ::close(fd_);
}

bool ServiceConnection::exchange(std::string_view line, const Receive& receive,
                                 const Progress& progress) {
    const std::string echo = "\n{\"echo\":\"" + nextMark() + "\"}\n";
    if (!send(line, progress) || !send(echo, {})) {
        // The service may have said why.
        const std::string fault = fault_;
        while (this->receive(receive)) {
        }
        fault_ = fault;
        return false;
    }
    while (!mark_.empty())
        if (!this->receive(receive)) return false;
    return true;
}

bool ServiceConnection::receive(const Receive& receive) {
    const auto room = lines_.room();
    const ssize_t count = ::recv(fd_, room.data(), room.size(), 0);
    // A signal asks to stop after the line that is under way.
    if (count < 0 && errno == EINTR) return true;
    if (count < 0) return broke(std::strerror(errno));
    if (count == 0) return broke("the service closed the connection");
    lines_.filled(static_cast<std::size_t>(count));
    while (lines_.next()) {
        if (isMark(lines_.line()))
            mark_.clear();
        else
            receive(lines_.line());
    }
    return true;
}

bool ServiceConnection::send(std::string_view text, const Progress& progress) {
    std::size_t sent = 0;
    while (sent < text.size()) {
        const ssize_t count = ::send(fd_, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
        if (count < 0 && errno != EINTR) return broke(std::strerror(errno));
        if (count > 0) sent += static_cast<std::size_t>(count);
        if (progress) progress(sent);
    }
    return true;
}

bool ServiceConnection::isMark(std::string_view line) const {
    return !mark_.empty() && line.starts_with("# ") && line.substr(2) == mark_;
}

std::string ServiceConnection::nextMark() {
    mark_ = session_ + std::to_string(++exchanges_);
    return mark_;
}

bool ServiceConnection::broke(std::string why) {
    fault_ = std::move(why);
    return false;
}

}  // namespace QosAgent
