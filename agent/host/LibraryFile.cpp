#include "agent/host/LibraryFile.h"

#include <link.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "agent/host/File.h"

namespace QosAgent {
namespace {

/// Reads one of the file's structures; false when it does not have that much.
template <class Structure>
bool readAt(const File& file, std::uint64_t offset, Structure& structure) {
    return ::pread(file.fd(), &structure, sizeof structure, static_cast<off_t>(offset)) ==
           static_cast<ssize_t>(sizeof structure);
}

bool isLibrary(const ElfW(Ehdr) & header) {
    return std::memcmp(header.e_ident, ELFMAG, SELFMAG) == 0 &&
           header.e_phentsize == sizeof(ElfW(Phdr));
}

/// Whether the file has all that is to be mapped of it: what is not there could be mapped all the
/// same, and the first access would end the process.
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

}  // namespace

std::string libraryFileFault(const std::string& path) {
    if (isSpecialFile(path)) return kSpecialFile;
    const File file = File::toRead(path);
    std::error_code unknown;
    const std::uintmax_t size = std::filesystem::file_size(path, unknown);
    if (file.error() != 0 || unknown) return {};
    return isWhole(file, size) ? "" : "file truncated";
}

}  // namespace QosAgent
