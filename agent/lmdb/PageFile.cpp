#include "agent/lmdb/PageFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace QosAgent::Lmdb {
namespace {

constexpr std::size_t kTreeHeadBytes = 48;
constexpr std::size_t kMetaBytes = 24 + 2 * kTreeHeadBytes + 16;

TreeHead treeHeadAt(std::string_view bytes, std::size_t at) {
    return {numberAt<std::uint32_t>(bytes, at),      numberAt<std::uint16_t>(bytes, at + 4),
            numberAt<std::uint16_t>(bytes, at + 6),  numberAt<std::uint64_t>(bytes, at + 8),
            numberAt<std::uint64_t>(bytes, at + 16), numberAt<std::uint64_t>(bytes, at + 24),
            numberAt<std::uint64_t>(bytes, at + 32), numberAt<std::uint64_t>(bytes, at + 40)};
}

}  // namespace

std::optional<std::size_t> Page::nodeCount() const {
    const std::size_t lower = numberAt<std::uint16_t>(bytes_, 12);
    const std::size_t upper = numberAt<std::uint16_t>(bytes_, 14);
    if (lower < kPageHead || lower % 2 != 0 || upper < lower || upper > bytes_.size()) return {};
    return (lower - kPageHead) / 2;
}

std::optional<PageNode> Page::node(std::size_t index) const {
    const std::size_t at = numberAt<std::uint16_t>(bytes_, kPageHead + 2 * index);
    const std::size_t upper = numberAt<std::uint16_t>(bytes_, 14);
    if (at < upper || at % 2 != 0 || at + kNodeHead > bytes_.size()) return {};
    const std::uint64_t low = numberAt<std::uint16_t>(bytes_, at);
    const std::uint64_t high = numberAt<std::uint16_t>(bytes_, at + 2);
    const std::uint16_t nodeFlags = numberAt<std::uint16_t>(bytes_, at + 4);
    const std::size_t keySize = numberAt<std::uint16_t>(bytes_, at + 6);
    const bool isLeaf = flags() == kLeaf;
    PageNode node{{}, {}, 0, 0, isLeaf && nodeFlags == kBigNode};
    if (isLeaf && nodeFlags != 0 && nodeFlags != kBigNode) return {};
    if (isLeaf)
        node.dataSize = low | high << 16;
    else
        node.child = low | high << 16 | std::uint64_t{nodeFlags} << 32;
    const std::size_t dataHere = node.isBig ? sizeof(std::uint64_t) : node.dataSize;
    if (keySize + dataHere > bytes_.size() - at - kNodeHead) return {};
    node.key = bytes_.substr(at + kNodeHead, keySize);
    node.data = bytes_.substr(at + kNodeHead + keySize, dataHere);
    return node;
}

PageFile::PageFile(const std::string& name) {
    const int fd = ::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    struct stat status {};
    if (fd < 0 || ::fstat(fd, &status) != 0) {
        error_ = errno;
    } else if (!S_ISREG(status.st_mode)) {
        error_ = EINVAL;
    } else if (status.st_size > 0) {
        const auto size = static_cast<std::size_t>(status.st_size);
        void* const mapped = ::mmap(nullptr, size, PROT_READ, MAP_SHARED, fd, 0);
        if (mapped == MAP_FAILED)
            error_ = errno;
        else
            bytes_ = {static_cast<const char*>(mapped), size};
    }
    if (fd >= 0) ::close(fd);
}

PageFile::~PageFile() {
    if (!bytes_.empty()) ::munmap(const_cast<char*>(bytes_.data()), bytes_.size());
}

std::optional<MetaPage> PageFile::meta(std::size_t index, std::size_t pageSize) const {
    const std::size_t begin = index * pageSize;
    if (bytes_.size() < begin + kPageHead + kMetaBytes) return {};
    const Page page(bytes_.substr(begin, kPageHead));
    if (page.number() != index || page.flags() != kMeta) return {};
    const std::string_view meta = bytes_.substr(begin + kPageHead, kMetaBytes);
    if (numberAt<std::uint32_t>(meta, 0) != kMagic) return {};
    if (numberAt<std::uint32_t>(meta, 4) != kFileVersion) return {};
    const std::size_t trees = 24;
    const std::size_t rest = trees + 2 * kTreeHeadBytes;
    return MetaPage{treeHeadAt(meta, trees), treeHeadAt(meta, trees + kTreeHeadBytes),
                    numberAt<std::uint64_t>(meta, rest), numberAt<std::uint64_t>(meta, rest + 8)};
}

std::optional<std::string_view> PageFile::pages(std::uint64_t number, std::uint64_t count,
                                                std::size_t pageSize) const {
    const std::uint64_t held = bytes_.size() / pageSize;
    if (number >= held || count > held - number) return {};
    return bytes_.substr(number * pageSize, count * pageSize);
}

}  // namespace QosAgent::Lmdb
