#include "agent/lmdb/StoreFolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

namespace QosAgent::Lmdb {

std::variant<StoreFolder, std::string> StoreFolder::take(const std::string& path) {
    if (::mkdir(path.c_str(), 0700) != 0 && errno != EEXIST)
        return path + " cannot be made: " + std::strerror(errno);
    const std::string lockFile = path + "/lock";
    const int lock = ::open(lockFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (lock < 0) return path + " cannot be written to: " + std::strerror(errno);
    if (::flock(lock, LOCK_EX | LOCK_NB) == 0) return StoreFolder(path, lock);
    const std::string why =
        errno == EWOULDBLOCK ? "is in use by another program" : std::strerror(errno);
    ::close(lock);
    return path + ' ' + why;
}

StoreFolder::StoreFolder(StoreFolder&& other) noexcept
    : path_(std::move(other.path_)), lock_(std::exchange(other.lock_, -1)) {}

StoreFolder::~StoreFolder() {
    if (lock_ >= 0) ::close(lock_);
}

int StoreFolder::putNewFileInPlace() const {
    if (::rename(newFile().c_str(), dataFile().c_str()) != 0) return errno;
    const int folder = ::open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) return errno;
    const int error = ::fsync(folder) == 0 ? 0 : errno;
    ::close(folder);
    return error;
}

bool StoreFolder::isFull() const {
    struct statvfs status {};
    return ::statvfs(path_.c_str(), &status) == 0 && status.f_bavail == 0;
}

}  // namespace QosAgent::Lmdb
