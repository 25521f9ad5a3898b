#include "agent/gnmi/Publisher.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

#include "agent/gnmi/Messages.h"

namespace QosAgent::Gnmi {

Publisher::Publisher(Service& service) : service_(service) {
    subscription_ = service.subscribe([this] { wake(); });
    tree_ = treeOf(subscription_->start());
    thread_ = std::thread([this] { run(); });
}

Publisher::~Publisher() {
    {
        const std::lock_guard lock(mutex_);
        isStopping_ = true;
    }
    condition_.notify_one();
    thread_.join();
    // Its `wake` may run until it has gone.
    subscription_.reset();
}

TreePtr Publisher::treeOf(const Snapshot& snapshot) {
    using std::chrono::duration_cast;
    using std::chrono::nanoseconds;
    const auto time = duration_cast<nanoseconds>(snapshot.time.time_since_epoch()).count();
    return std::make_shared<const Tree>(Tree{time, ConfigView(snapshot.configuration.view()),
                                             StateSource(snapshot.state), snapshot.policyMaps});
}

void Publisher::wake() {
    {
        const std::lock_guard lock(mutex_);
        isAwake_ = true;
    }
    condition_.notify_one();
}

void Publisher::post(std::function<void()> task) {
    {
        const std::lock_guard lock(mutex_);
        tasks_.push_back(std::move(task));
        isAwake_ = true;
    }
    condition_.notify_one();
}

void Publisher::add(std::shared_ptr<Stream> stream) {
    post([this, stream = std::move(stream)] { addNow(stream); });
}

void Publisher::remove(std::shared_ptr<Stream> stream) {
    post([this, stream = std::move(stream)] { removeNow(stream); });
}

void Publisher::run() {
    for (;;) {
        waitForWork();
        std::vector<std::function<void()>> tasks;
        {
            const std::lock_guard lock(mutex_);
            if (isStopping_) return;
            tasks.swap(tasks_);
            isAwake_ = false;
        }
        publishChanges();
        for (const auto& task : tasks)
            task();
        tick();
    }
}

void Publisher::waitForWork() {
    std::optional<Stream::Clock::time_point> due;
    for (const auto& stream : timed_)
        if (const auto next = stream->nextDue(); next && (!due || *next < *due)) due = next;
    std::unique_lock lock(mutex_);
    const auto hasWork = [this] { return isAwake_ || isStopping_; };
    if (due)
        condition_.wait_until(lock, *due, hasWork);
    else
        condition_.wait(lock, hasWork);
}

void Publisher::addNow(const std::shared_ptr<Stream>& stream) {
    const SubscriptionList& list = stream->list();
    // The stream begins with a tree that holds all that was published before.
    publishChanges();
    if (!list.onChange.patterns.empty()) groups_[list.sharedKey].push_back(stream);
    if (!list.repetitions.empty()) timed_.push_back(stream);
    if (stream->wantsToCollect()) collecting_.push_back(stream);
    stream->begin(tree_, Stream::Clock::now());
}

void Publisher::removeNow(const std::shared_ptr<Stream>& stream) {
    std::erase(timed_, stream);
    std::erase(collecting_, stream);
    const auto group = groups_.find(stream->list().sharedKey);
    if (group == groups_.end()) return;
    std::erase(group->second, stream);
    if (group->second.empty()) groups_.erase(group);
}

void Publisher::publishChanges() {
    for (const ChangeSetPtr& changes : subscription_->take())
        publish(*changes);
}

void Publisher::publish(const ChangeSet& changes) {
    const TreePtr before = std::exchange(tree_, treeOf(changes.after));
    if (groups_.empty() && collecting_.empty()) return;
    Touched touched;
    addTouched(touched, changes);
    const std::vector<Notice> notices = difference(*before, *tree_, touched);
    for (const auto& [key, group] : groups_) {
        const SubscriptionList& list = group.front()->list();
        std::vector<Notice> meant;
        for (const Notice& notice : notices)
            if (Notice kept = filtered(notice, list.onChange, *before); !kept.isEmpty())
                meant.push_back(std::move(kept));
        publishTo(group, meant);
    }
    for (const auto& stream : collecting_)
        stream->collect(notices, *before);
}

void Publisher::publishTo(const Group& group, const std::vector<Notice>& notices) {
    const SubscriptionList& list = group.front()->list();
    for (const Notice& notice : notices) {
        auto delivery = std::make_shared<const Delivery>(
            Delivery{notice, serialised(notice, list.encoding, list.target)});
        for (const auto& stream : group)
            stream->publish(delivery);
    }
}

void Publisher::tick() {
    if (timed_.empty()) return;
    const auto now = Stream::Clock::now();
    for (const auto& stream : timed_)
        if (const auto due = stream->nextDue(); due && *due <= now) stream->tick(tree_, now);
}

}  // namespace QosAgent::Gnmi
