#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "agent/gnmi/NoticeQueue.h"
#include "agent/gnmi/NoticeWalk.h"
#include "agent/gnmi/Subscriptions.h"
#include "agent/gnmi/Tree.h"

namespace QosAgent::Gnmi {

/// A message as it goes onto the wire.
using Bytes = std::shared_ptr<const std::string>;

/// What one client of Subscribe has yet to get. The publisher's thread puts in what happens; the
/// transport takes messages out one by one, at the speed of the client. Knows nothing of gRPC.
class Stream {
public:
    using Clock = std::chrono::steady_clock;
    static constexpr std::size_t kMostBytesOfAll = std::size_t{256} << 20;

    /// `counters` are of all streams, and outlive the stream.
    Stream(SubscriptionList list, StreamCounters& counters);
    ~Stream() { --counters_.streams; }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    const SubscriptionList& list() const { return list_; }
    /// Called, from any thread, whenever `next` may have something again. Set before `begin`.
    void setWake(std::function<void()> wake) { wake_ = std::move(wake); }

    /// The first values are those of this tree. Call it once, before anything below.
    void begin(TreePtr tree, Clock::time_point now);
    /// The client of a POLL stream asks for the values again.
    void poll(TreePtr tree);
    /// A change of what `list().onChange` means.
    void publish(DeliveryPtr delivery);
    /// Changes of any leaves, for samples that only tell what changed.
    void collect(const std::vector<Notice>& notices, const Tree& before);
    bool wantsToCollect() const;
    /// Begins the samples and heartbeats that are due. `tree` is the latest.
    void tick(const TreePtr& tree, Clock::time_point now);
    /// When `tick` has something to do again; nothing if never.
    std::optional<Clock::time_point> nextDue() const;

    /// The next message; null while there is none.
    Bytes next();
    /// Why the stream has to end; nothing while it goes on. `Code::ok` when all is sent.
    std::optional<Refusal> end() const;

private:
    struct Pending {
        TreePtr tree;
        const Query* query;  ///< null: no values
        bool endsWithSync;
    };
    struct Repeated {
        explicit Repeated(StreamCounters& counters) : changed(counters) {}
        const Repetition* repetition = nullptr;
        Clock::time_point due;
        NoticeQueue changed;      ///< since the last sample, where only those are told
        bool isReleased = false;  ///< `changed` may be sent
        bool isWaiting = false;   ///< a walk is waiting or under way
    };

    void addWalk(Pending pending) { pending_.push_back(std::move(pending)); }
    Bytes nextOfWalk();
    Bytes nextOfQueue();
    Bytes nextOfSamples();
    bool beginWalk();
    void checkMemory();
    Bytes bytesOf(const Notice& notice) const;

    const SubscriptionList list_;
    StreamCounters& counters_;
    std::function<void()> wake_;

    mutable std::mutex mutex_;  ///< guards what follows
    std::deque<Pending> pending_;
    std::unique_ptr<NoticeWalk> walk_;
    bool walkEndsWithSync_ = false;
    NoticeQueue queue_;
    std::deque<Repeated> repeated_;
    bool isSynchronised_ = false;
    std::optional<Refusal> failure_;
};

}  // namespace QosAgent::Gnmi
