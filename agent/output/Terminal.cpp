#include "agent/output/Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>

namespace QosAgent {
namespace {

constexpr std::size_t kUsualColumns = 80;

std::string_view variable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

std::size_t columnsOf(int fd) {
    winsize size{};
    const bool isKnown = ::ioctl(fd, TIOCGWINSZ, &size) == 0 && size.ws_col != 0;
    return isKnown ? size.ws_col : kUsualColumns;
}

}  // namespace

std::string painted(std::string_view colour, std::string_view text, bool hasColour) {
    if (!hasColour) return std::string(text);
    return std::string(colour).append(text).append(kPlain);
}

Terminal terminalOn(int fd) {
    if (::isatty(fd) == 0) return {};
    const std::string_view kind = variable("TERM");
    const bool canRedraw = !kind.empty() && kind != "dumb";
    return {columnsOf(fd), canRedraw, canRedraw && variable("NO_COLOR").empty()};
}

}  // namespace QosAgent
