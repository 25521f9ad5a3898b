#include "agent/host/File.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

namespace QosAgent {

File::File(int fd) : fd_(fd), error_(fd < 0 ? errno : 0) {}

File::File(File&& other) noexcept : fd_(std::exchange(other.fd_, -1)), error_(other.error_) {}

File::~File() {
    if (fd_ > STDERR_FILENO) ::close(fd_);
}

File File::toRead(const std::string& name) {
    if (name == "-") return File(STDIN_FILENO);
    return File(::open(name.c_str(), O_RDONLY | O_CLOEXEC));
}

File File::toReadLater(const std::string& name) {
    if (name == "-") return File(STDIN_FILENO);
    File file(::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (file.error() == 0) ::fcntl(file.fd(), F_SETFL, O_RDONLY);
    return file;
}

File File::toAppend(const std::string& name, unsigned mode) {
    return File(::open(name.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, mode));
}

int File::reopen(const File& other) {
    if (other.error() != 0) return other.error();
    return ::dup3(other.fd(), fd_, O_CLOEXEC) < 0 ? errno : 0;
}

File File::toWrite(const std::string& name) {
    return File(::open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0666));
}

bool File::isKept() const {
    struct stat status {};
    return ::isatty(fd_) != 0 || (::fstat(fd_, &status) == 0 && S_ISREG(status.st_mode));
}

bool isSameFile(const std::string& name, const std::string& other) {
    const auto path = [](const std::string& file) { return file == "-" ? "/dev/stdin" : file; };
    std::error_code ignored;
    const std::filesystem::path one = path(name);
    const std::filesystem::path two = path(other);
    if (!std::filesystem::exists(one, ignored))
        return std::filesystem::weakly_canonical(one, ignored) ==
               std::filesystem::weakly_canonical(two, ignored);
    return std::filesystem::is_regular_file(one, ignored) &&
           std::filesystem::equivalent(one, two, ignored);
}

bool isSpecialFile(const std::string& name) {
    std::error_code ignored;
    return std::filesystem::is_other(std::filesystem::status(name, ignored));
}

FileText readFile(const std::string& name, std::size_t mostBytes) {
    constexpr std::size_t kChunk = std::size_t{64} << 10;
    const File file = File::toRead(name);
    FileText read{{}, file.error()};
    std::size_t size = 0;
    while (read.error == 0 && size <= mostBytes) {
        read.text.resize(size + std::min(std::max(kChunk, size), mostBytes + 1 - size));
        const ssize_t count = ::read(file.fd(), read.text.data() + size, read.text.size() - size);
        if (count == 0) break;
        if (count > 0)
            size += static_cast<std::size_t>(count);
        else if (errno != EINTR)
            read.error = errno;
    }
    read.text.resize(size);
    return read;
}

}  // namespace QosAgent
