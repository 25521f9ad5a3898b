#include "agent/streams/LineReader.h"

#include <unistd.h>

#include <cerrno>

namespace QosAgent {

LineReader::LineReader(int fd, std::size_t mostBytes, const StopSignals& stop)
    : fd_(fd), stop_(stop), lines_(mostBytes) {}

bool LineReader::next() {
    if (stop_.isStopRequested()) return false;
    while (!lines_.next()) {
        if (fill()) continue;
        // A line that a signal or an error cuts off does not count; the end of the file ends one.
        return error_ == 0 && !stop_.isStopRequested() && lines_.last();
    }
    return true;
}

bool LineReader::fill() {
    while (stop_.waitReadable(fd_)) {
        const auto room = lines_.room();
        const ssize_t count = ::read(fd_, room.data(), room.size());
        if (count >= 0) {
            lines_.filled(static_cast<std::size_t>(count));
            return count > 0;
        }
        if (errno == EINTR) continue;
        error_ = errno;
        return false;
    }
    return false;
}

}  // namespace QosAgent
