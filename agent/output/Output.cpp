#include "agent/output/Output.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace QosAgent {

void Output::line(std::string_view text) {
    if (!fault_.empty()) return;
    buffer_.assign(text).push_back('\n');
    std::string_view rest = buffer_;
    while (!rest.empty()) {
        const ssize_t written = ::write(fd_, rest.data(), rest.size());
        if (written >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            fault_ = std::strerror(errno);
            return;
        }
    }
}

}  // namespace QosAgent
