#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "agent/gnmi/Notice.h"
#include "agent/gnmi/Tree.h"
#include "agent/service/Statistics.h"

namespace QosAgent::Gnmi {

/// A notice as every stream that asked for the same in the same encoding gets it.
struct Delivery {
    Notice notice;
    std::string bytes;  ///< the serialised message
};
using DeliveryPtr = std::shared_ptr<const Delivery>;

/// The notices that wait for one slow reader, and the memory that they take. They wait one by one
/// at first. Beyond a bound they are merged by path: the last value counts, and a delete
/// supersedes all below it. Then memory grows with the number of leaves, not of changes.
class NoticeQueue {
public:
    static constexpr std::size_t kMostSeparate = 256;
    static constexpr std::size_t kMostSeparateBytes = std::size_t{1} << 20;
    static constexpr std::size_t kMostBytes = std::size_t{16} << 20;

    /// `counters` are of all queues; they must outlive the queue.
    explicit NoticeQueue(StreamCounters& counters) : counters_(counters) {}
    ~NoticeQueue() { account(0); }
    NoticeQueue(const NoticeQueue&) = delete;
    NoticeQueue& operator=(const NoticeQueue&) = delete;

    void put(DeliveryPtr delivery);
    /// The next one as it was put in; null if it waits merged, or if nothing waits.
    DeliveryPtr takeSeparate();
    /// The next merged notice; nothing if none waits.
    std::optional<Notice> takeMerged();
    bool isEmpty() const { return separate_.empty() && deletes_.empty() && updates_.empty(); }
    /// Beyond `kMostBytes` a stream is given up.
    std::size_t bytes() const { return bytes_; }

    /// Adds a notice to what is merged, at once. With `before`, the tree before what the notice
    /// tells, a value that is the same again in the end is left out.
    void merge(const Notice& notice, const Tree* before = nullptr);

private:
    struct Value {
        std::string json;
        std::int64_t timestamp;
        std::uint32_t duplicates;
        std::string before;  ///< what the reader knows; empty: not known
    };

    static std::size_t sizeOf(const Value& value);
    void mergeDelete(const DataPath& path, std::int64_t timestamp);
    void mergeUpdate(const NodeUpdate& update, std::int64_t timestamp, const Tree* before);
    void takeFirstUpdate(Notice& notice);
    void account(std::size_t bytes);

    StreamCounters& counters_;
    std::size_t bytes_ = 0;
    std::deque<DeliveryPtr> separate_;
    /// Sent before the updates: where something was removed and created again, both wait.
    std::map<DataPath, std::int64_t, DataPathOrder> deletes_;
    std::map<DataPath, Value, DataPathOrder> updates_;
};

}  // namespace QosAgent::Gnmi
