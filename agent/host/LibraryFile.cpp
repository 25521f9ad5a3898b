#include "agent/host/LibraryFile.h"

#include <grp.h>
#include <link.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>

namespace QosAgent {
namespace {

/// Reads a structure of the file. Returns false if the file is too short.
template <class Structure>
bool readAt(const File& file, std::uint64_t offset, Structure& structure) {
    return ::pread(file.fd(), &structure, sizeof structure, static_cast<off_t>(offset)) ==
           static_cast<ssize_t>(sizeof structure);
}

bool isLibrary(const ElfW(Ehdr) & header) {
    return std::memcmp(header.e_ident, ELFMAG, SELFMAG) == 0 &&
           header.e_phentsize == sizeof(ElfW(Phdr));
}

/// Returns true if the file contains all bytes that its segments map. The system would map missing
/// pages, too, and the first access to one would kill the process.
bool isWhole(const File& file, std::uint64_t size) {
    ElfW(Ehdr) header;
    if (!readAt(file, 0, header) || !isLibrary(header)) return true;
    for (std::uint64_t i = 0; i < header.e_phnum; ++i) {
        ElfW(Phdr) segment;
        if (!readAt(file, header.e_phoff + i * sizeof segment, segment)) return false;
        if (segment.p_offset > size || segment.p_filesz > size - segment.p_offset) return false;
    }
    return true;
}

bool isTrustedOwner(uid_t owner) {
    return owner == 0 || owner == ::geteuid();
}

/// Returns true if the user is the only member of the group. Distributions create such a group for
/// each user, and make new files writable for it.
bool isPrivateGroup(gid_t group, uid_t user) {
    const passwd* const account = ::getpwuid(user);
    if (account == nullptr || account->pw_gid != group) return false;
    const std::string name = account->pw_name;
    const ::group* const entry = ::getgrgid(group);
    return entry != nullptr && entry->gr_name == name && *entry->gr_mem == nullptr;
}

bool isWritableByOthers(const struct stat& status) {
    if ((status.st_mode & S_IWOTH) != 0) return true;
    return (status.st_mode & S_IWGRP) != 0 && !isPrivateGroup(status.st_gid, status.st_uid);
}

std::string faultOf(const struct stat& status) {
    if (!S_ISREG(status.st_mode)) return kSpecialFile;
    if (!isTrustedOwner(status.st_uid))
        return "belongs to user " + std::to_string(status.st_uid) + ", not to root or to you";
    if (isWritableByOthers(status)) return "others may write to it (chmod go-w)";
    return {};
}

}  // namespace

LibraryFile::LibraryFile(const std::string& path) : file_(File::toReadLater(path)) {}

std::string LibraryFile::fault() const {
    if (file_.error() != 0) return std::strerror(file_.error());
    struct stat status {};
    if (::fstat(file_.fd(), &status) != 0) return std::strerror(errno);
    if (std::string fault = faultOf(status); !fault.empty()) return fault;
    return isWhole(file_, static_cast<std::uint64_t>(status.st_size)) ? "" : "file truncated";
}

std::string LibraryFile::loadName() const {
    return "/proc/" + std::to_string(::getpid()) + "/fd/" + std::to_string(file_.fd());
}

}  // namespace QosAgent
