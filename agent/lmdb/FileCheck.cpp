#include "agent/lmdb/FileCheck.h"

#include <bit>
#include <cstring>
#include <functional>
#include <optional>
#include <string_view>
#include <tuple>
#include <vector>

#include "agent/lmdb/PageFile.h"
#include "agent/lmdb/RecordCodec.h"

namespace QosAgent::Lmdb {
namespace {

constexpr const char* kDamaged = "is damaged";
constexpr const char* kForeign = "is no store of this program, or is damaged";
constexpr const char* kCut = "is damaged: it is cut short";
/// The free pages have integers as keys; the same word says that the file has no folder of its own.
constexpr std::uint16_t kFreeFlags = 0x4008;
constexpr unsigned kDeepest = 32;

/// The keys that may stand in a part of a tree: from `least` on, and below `bound`.
struct KeyRange {
    std::string_view least;
    std::optional<std::string_view> bound;
};

bool isBelow(std::string_view left, std::string_view right, bool isNumber) {
    if (!isNumber) return left < right;
    return numberAt<std::uint64_t>(left, 0) < numberAt<std::uint64_t>(right, 0);
}

/// Walks one tree and checks that it is one. Marks its pages as taken.
class TreeCheck {
public:
    /// Returns whether an entry of a leaf is right.
    using Entry = std::function<bool(std::string_view key, std::string_view value)>;

    TreeCheck(const PageFile& file, const MetaPage& meta, std::vector<bool>& taken, bool hasNumbers)
        : file_(file), meta_(meta), taken_(taken), hasNumbers_(hasNumbers) {}

    bool run(const TreeHead& head, const Entry& entry) {
        entry_ = &entry;
        if (head.flags != (hasNumbers_ ? kFreeFlags : 0) || head.depth > kDeepest) return false;
        if (head.root == kNoPage) return head.depth == 0 && head.entries == 0;
        return checkPage(head.root, head.depth, {}) && counted_.branchPages == head.branchPages &&
               counted_.leafPages == head.leafPages &&
               counted_.overflowPages == head.overflowPages && counted_.entries == head.entries;
    }

private:
    bool take(std::uint64_t first, std::uint64_t count) {
        if (first < 2 || first > meta_.lastPage || count > meta_.lastPage - first + 1) return false;
        for (std::uint64_t page = first; page < first + count; ++page) {
            if (taken_[page]) return false;
            taken_[page] = true;
        }
        return true;
    }
    bool checkPage(std::uint64_t number, unsigned depth, const KeyRange& range) {
        if (depth == 0 || !take(number, 1)) return false;
        const auto bytes = file_.pages(number, 1, meta_.free.pageSize);
        if (!bytes) return false;
        const Page page(*bytes);
        const auto count = page.nodeCount();
        const bool isLeaf = depth == 1;
        if (page.number() != number || page.flags() != (isLeaf ? kLeaf : kBranch)) return false;
        ++(isLeaf ? counted_.leafPages : counted_.branchPages);
        if (!count || *count == 0) return false;
        return isLeaf ? checkLeaf(page, *count, range) : checkBranch(page, *count, depth, range);
    }
    bool isIn(const KeyRange& range, std::string_view key) const {
        if (hasNumbers_ && key.size() != sizeof(std::uint64_t)) return false;
        if (!range.least.empty() && isBelow(key, range.least, hasNumbers_)) return false;
        return !range.bound || isBelow(key, *range.bound, hasNumbers_);
    }
    bool checkLeaf(const Page& page, std::size_t count, const KeyRange& range) {
        std::size_t bytes = 0;
        std::optional<std::string_view> before;
        for (std::size_t i = 0; i < count; ++i) {
            const auto node = page.node(i);
            if (!node || !isIn(range, node->key)) return false;
            if (before && !isBelow(*before, node->key, hasNumbers_)) return false;
            before = node->key;
            bytes += sizeOf(*node);
            ++counted_.entries;
            if (!checkEntry(*node)) return false;
        }
        return bytes == page.nodeBytes();
    }
    bool checkEntry(const PageNode& node) {
        if (!node.isBig) return (*entry_)(node.key, node.data);
        const std::size_t pageSize = meta_.free.pageSize;
        const auto first = numberAt<std::uint64_t>(node.data, 0);
        const std::uint64_t count = (kPageHead - 1 + node.dataSize) / pageSize + 1;
        if (!take(first, count)) return false;
        const auto bytes = file_.pages(first, count, pageSize);
        if (!bytes) return false;
        const Page page(bytes->substr(0, pageSize));
        if (page.number() != first || page.flags() != kOverflow || page.overflowCount() != count)
            return false;
        counted_.overflowPages += count;
        return (*entry_)(node.key, bytes->substr(kPageHead, node.dataSize));
    }
    bool checkBranch(const Page& page, std::size_t count, unsigned depth, const KeyRange& range) {
        if (count < 2) return false;
        std::size_t bytes = 0;
        KeyRange inner{range.least, {}};
        std::optional<PageNode> node = page.node(0);
        for (std::size_t i = 0; i < count; ++i) {
            const auto next = i + 1 < count ? page.node(i + 1) : std::nullopt;
            if (!node || (i + 1 < count && (!next || !isIn(range, next->key)))) return false;
            bytes += sizeOf(*node);
            inner.bound = next ? next->key : range.bound;
            if (i > 0 && inner.bound && !isBelow(inner.least, *inner.bound, hasNumbers_))
                return false;
            if (!checkPage(node->child, depth - 1, inner)) return false;
            if (next) inner.least = next->key;
            node = next;
        }
        return bytes == page.nodeBytes();
    }
    /// Nodes begin at even places.
    static std::size_t sizeOf(const PageNode& node) {
        return (kNodeHead + node.key.size() + node.data.size() + 1) / 2 * 2;
    }

    const PageFile& file_;
    const MetaPage& meta_;
    std::vector<bool>& taken_;
    const bool hasNumbers_;
    const Entry* entry_ = nullptr;
    TreeHead counted_{};
};

/// Pages that are said to be free must be nobody's.
bool areFree(std::string_view list, const MetaPage& meta, std::vector<bool>& taken) {
    constexpr std::size_t kNumber = sizeof(std::uint64_t);
    if (list.size() < kNumber || list.size() % kNumber != 0) return false;
    const auto count = numberAt<std::uint64_t>(list, 0);
    if (count > list.size() / kNumber - 1) return false;
    for (std::size_t i = 1; i <= count; ++i) {
        const auto page = numberAt<std::uint64_t>(list, i * kNumber);
        if (page < 2 || page > meta.lastPage || taken[page]) return false;
        taken[page] = true;
    }
    return true;
}

bool checkTrees(const PageFile& file, const MetaPage& meta) {
    std::vector<bool> taken(meta.lastPage + 1);
    std::vector<std::string> lists;
    const auto isRecord = [](std::string_view key, std::string_view value) {
        return decoded(key, value).has_value();
    };
    const auto addList = [&](std::string_view, std::string_view list) {
        lists.emplace_back(list);
        return true;
    };
    if (!TreeCheck(file, meta, taken, false).run(meta.records, isRecord)) return false;
    if (!TreeCheck(file, meta, taken, true).run(meta.free, addList)) return false;
    for (const std::string& list : lists)
        if (!areFree(list, meta, taken)) return false;
    return true;
}

/// The page size, as the first page says.
std::size_t pageSizeOf(const PageFile& file) {
    const auto meta = file.meta(0, kPageHead);
    const std::size_t size = meta ? meta->free.pageSize : 0;
    return size >= 512 && size <= 65536 && std::has_single_bit(size) ? size : 0;
}

}  // namespace

std::string checkFile(const std::string& name) {
    const PageFile file(name);
    if (file.error() != 0) return std::string("cannot be read: ") + std::strerror(file.error());
    if (file.bytes().empty()) return "is damaged: it is empty";
    const std::size_t pageSize = pageSizeOf(file);
    if (pageSize == 0) return kForeign;
    const auto first = file.meta(0, pageSize);
    const auto second = file.meta(1, pageSize);
    if (!first || !second || second->free.pageSize != pageSize) return kDamaged;
    // Commits write the two meta pages in turns.
    const auto& [older, newer] = first->transaction < second->transaction
                                     ? std::tie(*first, *second)
                                     : std::tie(*second, *first);
    if (newer.transaction != older.transaction + 1) return kDamaged;
    // Pages at the end may be free, and not written yet.
    const std::uint64_t pages = file.bytes().size() / pageSize;
    if (newer.lastPage < 1 || newer.lastPage > 2 * pages + 65536) return kDamaged;
    if (pages < 2) return kCut;
    return checkTrees(file, newer) ? "" : kDamaged;
}

}  // namespace QosAgent::Lmdb
