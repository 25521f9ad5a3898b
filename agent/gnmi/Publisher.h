#pragma once

#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "agent/gnmi/Difference.h"
#include "agent/gnmi/Stream.h"
#include "agent/service/Service.h"

namespace QosAgent::Gnmi {

/// Brings changes to the streams, on a thread of its own. What several streams asked for in the
/// same way is filtered and serialised once for all of them. Sleeps while nothing changes and
/// nothing is sampled.
class Publisher {
public:
    /// The service must outlive the publisher.
    explicit Publisher(Service& service);
    /// Returns when the thread has ended.
    ~Publisher();
    Publisher(const Publisher&) = delete;
    Publisher& operator=(const Publisher&) = delete;

    /// From now on the stream gets what it asked for. Any thread.
    void add(std::shared_ptr<Stream> stream);
    /// The publisher forgets the stream. Any thread.
    void remove(std::shared_ptr<Stream> stream);
    /// Runs a task on the publisher's thread. Any thread.
    void post(std::function<void()> task);

    /// What is served now.
    TreePtr tree() const { return treeOf(service_.snapshot()); }
    static TreePtr treeOf(const Snapshot& snapshot);

    /// Those of all streams.
    StreamCounters& counters() { return service_.grpcCounters(); }

private:
    /// The streams that asked for the same changes in the same encoding.
    using Group = std::vector<std::shared_ptr<Stream>>;

    void run();
    void wake();
    void waitForWork();
    void addNow(const std::shared_ptr<Stream>& stream);
    void removeNow(const std::shared_ptr<Stream>& stream);
    void publishChanges();
    void publish(const ChangeSet& changes);
    void publishTo(const Group& group, const std::vector<Notice>& notices);
    void tick();

    Service& service_;

    std::mutex mutex_;  ///< guards the next three
    std::condition_variable condition_;
    std::vector<std::function<void()>> tasks_;
    bool isAwake_ = false;
    bool isStopping_ = false;

    // The thread's own.
    std::unique_ptr<Subscription> subscription_;
    TreePtr tree_;
    std::map<std::string, Group> groups_;
    Group timed_;
    Group collecting_;
    std::thread thread_;
};

}  // namespace QosAgent::Gnmi
