#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <string_view>

/// The layout of LMDB's files, format 1, as machines with 64 bits in the order of this one write
/// it. Offsets are in bytes.
namespace QosAgent::Lmdb {

inline constexpr std::uint32_t kMagic = 0xBEEFC0DE;
inline constexpr std::uint32_t kFileVersion = 1;
inline constexpr std::uint64_t kNoPage = ~std::uint64_t{0};
inline constexpr std::size_t kPageHead = 16;
inline constexpr std::size_t kNodeHead = 8;

enum PageFlag : std::uint16_t { kBranch = 1, kLeaf = 2, kOverflow = 4, kMeta = 8 };
inline constexpr std::uint16_t kBigNode = 1;  ///< the node's data is on overflow pages

/// A number at an offset of some bytes, which must reach so far.
template <class Number>
Number numberAt(std::string_view bytes, std::size_t offset) {
    Number number;
    std::memcpy(&number, bytes.data() + offset, sizeof number);
    return number;
}

/// What a meta page says of one of the two trees.
struct TreeHead {
    std::uint32_t pageSize;
    std::uint16_t flags, depth;
    std::uint64_t branchPages, leafPages, overflowPages, entries, root;
};
struct MetaPage {
    TreeHead free, records;
    std::uint64_t lastPage, transaction;
};

/// A node of a branch or a leaf.
struct PageNode {
    std::string_view key;
    std::string_view data;  ///< of a leaf; of a big node, the number of its first overflow page
    std::uint64_t child;    ///< of a branch
    std::uint64_t dataSize;
    bool isBig;
};

/// One page, of which only the size is known to be right.
class Page {
public:
    explicit Page(std::string_view bytes) : bytes_(bytes) {}

    std::uint64_t number() const { return numberAt<std::uint64_t>(bytes_, 0); }
    std::uint16_t flags() const { return numberAt<std::uint16_t>(bytes_, 10); }
    /// Of the first page of a run of overflow pages.
    std::uint32_t overflowCount() const { return numberAt<std::uint32_t>(bytes_, 12); }
    /// How many nodes the page has; nothing if its parts do not fit in it.
    std::optional<std::size_t> nodeCount() const;
    /// Nothing if the node does not fit in the page. `index` is below `nodeCount()`.
    std::optional<PageNode> node(std::size_t index) const;
    /// The bytes that the nodes take, as far as the page says.
    std::size_t nodeBytes() const { return bytes_.size() - numberAt<std::uint16_t>(bytes_, 14); }

private:
    std::string_view bytes_;
};

/// A file, read page by page.
class PageFile {
public:
    /// Opens the file. `error()` is `errno` if that failed.
    explicit PageFile(const std::string& name);
    ~PageFile();
    PageFile(const PageFile&) = delete;
    PageFile& operator=(const PageFile&) = delete;

    int error() const { return error_; }
    std::string_view bytes() const { return bytes_; }
    /// What one of the two meta pages says, 0 or 1; nothing if it is none.
    std::optional<MetaPage> meta(std::size_t index, std::size_t pageSize) const;
    /// Nothing if the file does not reach so far.
    std::optional<std::string_view> pages(std::uint64_t number, std::uint64_t count,
                                          std::size_t pageSize) const;

private:
    std::string_view bytes_;
    int error_ = 0;
};

}  // namespace QosAgent::Lmdb
