#include "agent/service/Record.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>

#include "agent/json/Visible.h"
#include "agent/output/Diagnostics.h"
#include "platform/Vex/UtcTime.h"

namespace QosAgent {
namespace {

/// Writes all of the text. Returns how much was written, less than all if a write failed.
std::size_t writeAll(int fd, std::string_view text) {
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t count = ::write(fd, text.data() + done, text.size() - done);
        if (count >= 0)
            done += static_cast<std::size_t>(count);
        else if (errno != EINTR)
            break;
    }
    return done;
}

}  // namespace

Record::Record(std::string file) : name_(std::move(file)), file_(File::toAppend(name_, 0600)) {}

void Record::append(std::string_view line, std::string_view door) {
    std::string text = "# " + Vex::utcText(std::chrono::system_clock::now()) + ' ';
    text.append(visible(door)).append(1, '\n').append(line).append(1, '\n');
    const std::size_t written = writeAll(file_.fd(), text);
    const int error = errno;
    if (written == text.size()) {
        isFailing_ = false;
        return;
    }
    undo(written);
    if (!isFailing_) report(refusal(name_, std::strerror(error)));
    isFailing_ = true;
}

/// Half a line would refuse the replay.
void Record::undo(std::size_t written) {
    const off_t end = ::lseek(file_.fd(), 0, SEEK_END);
    if (written == 0 || end < static_cast<off_t>(written)) return;
    [[maybe_unused]] const int failed = ::ftruncate(file_.fd(), end - static_cast<off_t>(written));
}

void Record::reopen() {
    if (const int error = file_.reopen(File::toAppend(name_, 0600)))
        report(refusal(name_, std::strerror(error)));
}

}  // namespace QosAgent
