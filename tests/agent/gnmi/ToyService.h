#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "agent/feed/ChangeCollector.h"
#include "agent/feed/Mailbox.h"
#include "agent/service/Service.h"
#include "tests/agent/gnmi/Trees.h"

namespace QosAgent::Gnmi {

/// A core that does what a test says: the state is what the test makes it, and requests are
/// answered as it wants. Thread-safe.
class ToyService final : public Service {
public:
    /// Answers requests; called on the thread that submits. Applies nothing by itself.
    std::function<void(const Request&, Done)> onSubmit = [](const Request&, const Done& done) {
        done({});
    };

    void submit(Request request, Done done) override {
        {
            const std::lock_guard lock(mutex_);
            lines_.push_back(request.line);
        }
        onSubmit(request, std::move(done));
    }
    Snapshot snapshot() override {
        const std::lock_guard lock(mutex_);
        return now_;
    }
    std::unique_ptr<Subscription> subscribe(std::function<void()> wake) override {
        const std::lock_guard lock(mutex_);
        return std::make_unique<ToySubscription>(*this, now_, std::move(wake));
    }

    void statistics(std::function<void(Statistics)> done) override { done({}); }
    StreamCounters& grpcCounters() override { return counters_; }

    /// Changes the state as one request would.
    void update(const TreeBuilder& tree, const std::vector<std::string>& paths) {
        change(tree, paths, {});
    }
    void remove(const TreeBuilder& tree, const std::vector<std::string>& paths) {
        change(tree, {}, paths);
    }
    std::vector<std::string> lines() const {
        const std::lock_guard lock(mutex_);
        return lines_;
    }

private:
    class ToySubscription final : public Subscription {
    public:
        ToySubscription(ToyService& service, Snapshot start, std::function<void()> wake)
            : mailbox_(std::move(wake)), service_(service), start_(std::move(start)) {
            service_.mailboxes_.insert(&mailbox_);
        }
        ~ToySubscription() override {
            {
                const std::lock_guard lock(service_.mutex_);
                service_.mailboxes_.erase(&mailbox_);
            }
            mailbox_.close();
        }
        const Snapshot& start() const override { return start_; }
        std::vector<ChangeSetPtr> take() override { return mailbox_.take(); }

    private:
        Mailbox mailbox_;
        ToyService& service_;
        Snapshot start_;
    };

    void change(const TreeBuilder& tree, const std::vector<std::string>& updated,
                const std::vector<std::string>& removed) {
        const std::lock_guard lock(mutex_);
        ChangeCollector collector;
        for (const auto& path : removed)
            collector.removed(path);
        for (const auto& path : updated)
            collector.updated(path, tree.state().find(path));
        Snapshot after{now_.sequence + 1, now_.time + std::chrono::seconds(1), tree.state()};
        const ChangeSetPtr changes = collector.take(now_, after);
        now_ = after;
        for (Mailbox* mailbox : mailboxes_)
            mailbox->put(changes);
    }

    mutable std::mutex mutex_;
    Snapshot now_;
    std::vector<std::string> lines_;
    StreamCounters counters_;
    std::set<Mailbox*> mailboxes_;
};

}  // namespace QosAgent::Gnmi
