#include "agent/gnmi/NoticeQueue.h"

#include <algorithm>
#include <limits>

namespace QosAgent::Gnmi {

namespace {

/// What an entry of a map takes beside its texts.
constexpr std::size_t kEntryBytes = 160;

std::size_t bytesOf(const DataPath& path) {
    std::size_t bytes = kEntryBytes + path.keys.size() * sizeof(std::string);
    for (const std::string& key : path.keys)
        bytes += key.size();
    return bytes;
}

std::uint32_t sum(std::uint32_t left, std::uint32_t right) {
    const std::uint64_t sum = std::uint64_t{left} + right;
    return static_cast<std::uint32_t>(
        std::min<std::uint64_t>(sum, std::numeric_limits<std::uint32_t>::max()));
}

/// The value of a leaf; empty if the tree does not have it.
std::string valueIn(const Tree& tree, const DataPath& leaf) {
    for (LeafValue& value : tree.leaves(entryOf(leaf)))
        if (value.leaf == leaf.node) return std::move(value.json);
    return {};
}

}  // namespace

std::size_t NoticeQueue::sizeOf(const Value& value) {
    return value.json.size() + value.before.size();
}

void NoticeQueue::account(std::size_t bytes) {
    counters_.waitingBytes += bytes - bytes_;
    bytes_ = bytes;
}

void NoticeQueue::put(DeliveryPtr delivery) {
    const bool isMerged = !deletes_.empty() || !updates_.empty();
    if (!isMerged && separate_.size() < kMostSeparate &&
        bytes_ + delivery->bytes.size() <= kMostSeparateBytes) {
        account(bytes_ + delivery->bytes.size());
        separate_.push_back(std::move(delivery));
        return;
    }
    if (!separate_.empty()) account(0);
    for (const DeliveryPtr& waiting : separate_)
        merge(waiting->notice);
    separate_.clear();
    merge(delivery->notice);
}

DeliveryPtr NoticeQueue::takeSeparate() {
    if (separate_.empty()) return nullptr;
    DeliveryPtr first = std::move(separate_.front());
    separate_.pop_front();
    account(bytes_ - first->bytes.size());
    return first;
}

void NoticeQueue::merge(const Notice& notice, const Tree* before) {
    for (const DataPath& path : notice.deletes)
        mergeDelete(path, notice.timestamp);
    for (const NodeUpdate& update : notice.updates)
        mergeUpdate(update, notice.timestamp, before);
}

void NoticeQueue::mergeDelete(const DataPath& path, std::int64_t timestamp) {
    auto update = updates_.lower_bound(path);
    while (update != updates_.end() && update->first.isAtOrBelow(path)) {
        account(bytes_ - bytesOf(update->first) - sizeOf(update->second));
        update = updates_.erase(update);
    }
    auto below = deletes_.lower_bound(path);
    while (below != deletes_.end() && below->first.isAtOrBelow(path)) {
        account(bytes_ - bytesOf(below->first));
        below = deletes_.erase(below);
    }
    deletes_.emplace(path, timestamp);
    account(bytes_ + bytesOf(path));
}

void NoticeQueue::mergeUpdate(const NodeUpdate& update, std::int64_t timestamp,
                              const Tree* before) {
    const auto [at, isNew] =
        updates_.try_emplace(update.path, Value{update.json, timestamp, update.duplicates, {}});
    Value& value = at->second;
    if (isNew) {
        if (before != nullptr) value.before = valueIn(*before, update.path);
        account(bytes_ + bytesOf(update.path) + sizeOf(value));
        return;
    }
    ++counters_.merged;
    account(bytes_ + update.json.size() - value.json.size());
    value.json = update.json;
    value.timestamp = timestamp;
    value.duplicates = sum(value.duplicates, sum(update.duplicates, 1));
}

std::optional<Notice> NoticeQueue::takeMerged() {
    if (!deletes_.empty()) {
        auto first = deletes_.extract(deletes_.begin());
        account(bytes_ - bytesOf(first.key()));
        return Notice{first.mapped(), {std::move(first.key())}, {}};
    }
    Notice notice;
    while (!updates_.empty() && notice.isEmpty()) {
        const DataPath entry = entryOf(updates_.begin()->first);
        while (!updates_.empty() && entryOf(updates_.begin()->first) == entry)
            takeFirstUpdate(notice);
    }
    if (notice.isEmpty()) return std::nullopt;
    return notice;
}

void NoticeQueue::takeFirstUpdate(Notice& notice) {
    auto first = updates_.extract(updates_.begin());
    Value& value = first.mapped();
    account(bytes_ - bytesOf(first.key()) - sizeOf(value));
    if (value.json == value.before) return;
    notice.timestamp = std::max(notice.timestamp, value.timestamp);
    notice.updates.push_back({std::move(first.key()), std::move(value.json), value.duplicates});
}

}  // namespace QosAgent::Gnmi
