#include "agent/streams/LineReader.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace QosAgent {
namespace {

constexpr std::size_t kBufferBytes = std::size_t{64} << 10;

}  // namespace

LineReader::LineReader(int fd, std::size_t mostBytes, const StopSignals& stop)
    : fd_(fd), mostKept_(mostBytes + 2), stop_(stop), buffer_(kBufferBytes) {}

bool LineReader::next() {
    line_.clear();
    if (stop_.isStopRequested()) return false;
    bool isBegun = false;
    bool isEnded = false;
    while (!isEnded && (!rest_.empty() || fill())) {
        const std::size_t end = rest_.find('\n');
        isBegun = true;
        isEnded = end != std::string_view::npos;
        append(rest_.substr(0, end));
        rest_.remove_prefix(isEnded ? end + 1 : rest_.size());
    }
    // What a signal or an error cuts off is no line; what the file's end cuts off is one.
    const bool isCut = !isEnded && (error_ != 0 || stop_.isStopRequested());
    if (!isBegun || isCut) return false;
    if (line_.ends_with('\r')) line_.pop_back();
    ++number_;
    return true;
}

bool LineReader::fill() {
    while (stop_.waitReadable(fd_)) {
        const ssize_t count = ::read(fd_, buffer_.data(), buffer_.size());
        if (count >= 0) {
            rest_ = {buffer_.data(), static_cast<std::size_t>(count)};
            return count > 0;
        }
        if (errno == EINTR) continue;
        error_ = errno;
        return false;
    }
    return false;
}

void LineReader::append(std::string_view piece) {
    line_.append(piece.substr(0, mostKept_ - std::min(mostKept_, line_.size())));
}

}  // namespace QosAgent
