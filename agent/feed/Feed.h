#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>
#include <vector>

#include "agent/database/Database.h"
#include "agent/feed/ChangeCollector.h"
#include "agent/feed/FeedStatistics.h"
#include "agent/feed/Mailbox.h"
#include "agent/feed/StateWatch.h"
#include "agent/feed/Subscription.h"

namespace QosAgent {

/// Passes the published changes of the state tree on to whoever asked for them: each single change
/// to listeners on the event thread, the outcome of each request to subscribers on any thread. The
/// state tree is watched only while somebody asked.
class Feed : private ChangeListener {
public:
    /// The database must outlive the feed.
    explicit Feed(const Database& database) : subtree_(database.stateTree()) {}
    ~Feed() override;

    // Event thread only.

    /// Notifies the listener of each change until it is removed. No-op if it is there already.
    /// Neither function may be called within a change.
    void listenerIs(ChangeListener& listener);
    void listenerDel(ChangeListener& listener);
    /// Keeps the state as an immutable map, which snapshots and subscriptions need, until
    /// `releaseState` has been called as often.
    void keepState();
    void releaseState();
    /// The state as it is now; empty unless it is kept. During the notification of a change, the
    /// state before that change.
    const StateMap& state() const { return state_; }
    /// The path of a change, below the root of the state tree.
    std::string_view below(const Change& change) const;
    /// Where snapshots have the configuration from; without a source it is empty in all of them.
    void configurationSourceIs(std::function<ConfigurationTree()> source) {
        configurationSource_ = std::move(source);
    }
    /// Where snapshots have the names of policy maps from; without a source there are none.
    void policyMapsSourceIs(std::function<PolicyMapNames()> source) {
        policyMapsSource_ = std::move(source);
    }
    /// A request has been applied: makes its outcome the latest snapshot and tells subscribers.
    void endRequest() { publish(collect()); }
    /// The same in two steps, for what must not be seen yet. Returns the outcome of the request;
    /// null if the state is not kept.
    ChangeSetPtr collect();
    /// Makes an outcome the latest snapshot and tells subscribers. To be called in the order of
    /// `collect`. No-op if it is null.
    void publish(const ChangeSetPtr& changes);
    /// In the place of `publish`, for the last outcomes that were collected: what they changed is
    /// part of the next one. No-op if it is null.
    void withhold(const ChangeSetPtr& changes);
    /// The state after the last request; what subscribers see may be earlier.
    const Snapshot& applied() const { return collected_; }
    FeedStatistics statistics() const;

    // Any thread. Precondition: the state is kept.

    Snapshot snapshot() const;
    /// Begins a subscription; `wake` as `Mailbox` describes it. The subscription may outlive the
    /// feed.
    std::unique_ptr<Subscription> subscribe(std::function<void()> wake);

private:
    void changed(const Change& change) override;
    void record(const Change& change);
    void watch();
    std::vector<std::shared_ptr<Mailbox>> mailboxes() const;

    const Subtree& subtree_;
    std::vector<ChangeListener*> listeners_;
    unsigned stateKeepers_ = 0;
    StateMap state_;
    std::function<ConfigurationTree()> configurationSource_ = [] { return ConfigurationTree(); };
    std::function<PolicyMapNames()> policyMapsSource_ = [] { return PolicyMapNames(); };
    ChangeCollector collector_;
    Snapshot collected_;  ///< after the last outcome that was collected
    FeedStatistics statistics_;
    std::optional<StateWatch> watch_;
    mutable std::mutex mutex_;  ///< guards what follows
    Snapshot latest_;
    mutable std::vector<std::weak_ptr<Mailbox>> mailboxes_;
};

}  // namespace QosAgent
