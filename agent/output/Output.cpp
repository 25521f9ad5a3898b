#include "agent/output/Output.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace QosAgent {

void Output::line(std::string_view text) {
    if (!fault_.empty()) return;
    buffer_.assign(text).push_back('\n');
    std::string_view rest = buffer_;
    while (!rest.empty() && fault_.empty()) {
        const ssize_t written = ::write(fd_, rest.data(), rest.size());
        if (written >= 0)
            rest.remove_prefix(static_cast<std::size_t>(written));
        else
            recover(errno);
    }
}

void Output::recover(int error) {
    if (error == EINTR) return;
    if (error == EAGAIN) {
        // Another process shares the file and made it non-blocking; changing that back would
        // surprise it.
        pollfd full{fd_, POLLOUT, 0};
        ::poll(&full, 1, -1);
        return;
    }
    fault_ = std::strerror(error);
    isReaderGone_ = error == EPIPE;
}

}  // namespace QosAgent
