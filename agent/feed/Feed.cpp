#include "agent/feed/Feed.h"

#include <algorithm>
#include <utility>

#include "agent/feed/StateValues.h"

namespace QosAgent {
namespace {

class MailboxSubscription final : public Subscription {
public:
    MailboxSubscription(Snapshot start, std::shared_ptr<Mailbox> mailbox)
        : start_(std::move(start)), mailbox_(std::move(mailbox)) {}
    ~MailboxSubscription() override { mailbox_->close(); }

    const Snapshot& start() const override { return start_; }
    std::vector<ChangeSetPtr> take() override { return mailbox_->take(); }

private:
    Snapshot start_;
    std::shared_ptr<Mailbox> mailbox_;
};

}  // namespace

Feed::~Feed() = default;

void Feed::listenerIs(ChangeListener& listener) {
    if (std::ranges::count(listeners_, &listener) != 0) return;
    listeners_.push_back(&listener);
    watch();
}

void Feed::listenerDel(ChangeListener& listener) {
    std::erase(listeners_, &listener);
    if (listeners_.empty() && stateKeepers_ == 0) watch_.reset();
}

void Feed::keepState() {
    if (stateKeepers_++ > 0) return;
    // The listeners know already what the new watch notifies of.
    const auto listeners = std::exchange(listeners_, {});
    watch_.reset();
    watch_.emplace(subtree_, static_cast<ChangeListener&>(*this), StateWatch::Beginning::notified);
    listeners_ = listeners;
    endRequest();
}

void Feed::releaseState() {
    if (--stateKeepers_ > 0) return;
    state_ = {};
    collector_ = {};
    if (listeners_.empty()) watch_.reset();
}

void Feed::watch() {
    if (!watch_) watch_.emplace(subtree_, static_cast<ChangeListener&>(*this));
}

std::string_view Feed::below(const Change& change) const {
    return std::string_view(change.path()).substr(subtree_.mount->path.size() + 1);
}

void Feed::changed(const Change& change) {
    ++(change.isDelete() ? statistics_.deletes : statistics_.updates);
    for (ChangeListener* listener : listeners_)
        listener->changed(change);
    if (stateKeepers_ > 0) record(change);
}

void Feed::record(const Change& change) {
    const std::string path(below(change));
    if (change.isDelete()) {
        state_ = state_.without(path);
        collector_.removed(path);
    } else {
        StateValuePtr value = stateValue(path, change);
        state_ = state_.with(path, value);
        collector_.updated(path, std::move(value));
    }
}

ChangeSetPtr Feed::collect() {
    if (stateKeepers_ == 0) return {};
    Snapshot next{collected_.sequence + 1,
                  std::max(collected_.time, std::chrono::system_clock::now()), state_,
                  configurationSource_(), policyMapsSource_()};
    ChangeSetPtr changes = collector_.take(collected_, next);
    collected_ = std::move(next);
    return changes;
}

void Feed::publish(const ChangeSetPtr& changes) {
    if (changes == nullptr) return;
    std::vector<std::shared_ptr<Mailbox>> readers;
    {
        const std::lock_guard lock(mutex_);
        latest_ = changes->after;
        readers = mailboxes();
    }
    for (const std::shared_ptr<Mailbox>& reader : readers)
        if (!changes->isEmpty()) statistics_.merged += reader->put(changes);
}

FeedStatistics Feed::statistics() const {
    FeedStatistics statistics = statistics_;
    const std::lock_guard lock(mutex_);
    const auto readers = mailboxes();
    statistics.subscribers = readers.size();
    for (const std::shared_ptr<Mailbox>& reader : readers)
        statistics.waiting += reader->waiting();
    return statistics;
}

void Feed::withhold(const ChangeSetPtr& changes) {
    if (changes == nullptr) return;
    collector_.merge(*changes);
    const std::lock_guard lock(mutex_);
    collected_ = latest_;
}

/// Those whose subscriptions are alive.
std::vector<std::shared_ptr<Mailbox>> Feed::mailboxes() const {
    std::vector<std::shared_ptr<Mailbox>> alive;
    std::erase_if(mailboxes_, [&alive](const std::weak_ptr<Mailbox>& mailbox) {
        if (auto held = mailbox.lock()) alive.push_back(std::move(held));
        return mailbox.expired();
    });
    return alive;
}

Snapshot Feed::snapshot() const {
    const std::lock_guard lock(mutex_);
    return latest_;
}

std::unique_ptr<Subscription> Feed::subscribe(std::function<void()> wake) {
    auto mailbox = std::make_shared<Mailbox>(std::move(wake));
    const std::lock_guard lock(mutex_);
    mailboxes_.push_back(mailbox);
    return std::make_unique<MailboxSubscription>(latest_, std::move(mailbox));
}

}  // namespace QosAgent
