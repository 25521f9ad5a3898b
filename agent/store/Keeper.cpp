#include "agent/store/Keeper.h"

#include <cstdlib>
#include <iterator>
#include <utility>

#include "agent/options/ExitCodes.h"
#include "agent/output/Diagnostics.h"
#include "agent/store/TakeBack.h"

namespace QosAgent {

Keeper::Keeper(Store& store, Database& database, Configuration& configuration, Feed& feed)
    : store_(store),
      database_(database),
      configuration_(configuration),
      feed_(feed),
      collector_(database, configuration, feed, store.keepsChanges()),
      tree_(configuration.tree()),
      lastNumber_(store.lastNumber()),
      pipeline_(store, [this] {
          const std::lock_guard lock(wakeMutex_);
          if (wake_) wake_();
      }) {}

void Keeper::wakeIs(std::function<void()> wake) {
    const std::lock_guard lock(wakeMutex_);
    wake_ = std::move(wake);
}

void Keeper::endRequest() {
    Transaction changed = collector_.take();
    ConfigurationTree before = std::exchange(tree_, configuration_.tree());
    ChangeSetPtr changes = feed_.collect();
    isTransaction_ = !changed.isEmpty();
    TransactionPtr transaction;
    if (isTransaction_) {
        changed.number = ++lastNumber_;
        std::vector<RecordEdit> carried;
        carried_.take(carried);
        changed.edits.insert(changed.edits.begin(), std::make_move_iterator(carried.begin()),
                             std::make_move_iterator(carried.end()));
        transaction = std::make_shared<const Transaction>(std::move(changed));
        pipeline_.commit(transaction);
    } else if (waiting_.empty()) {
        feed_.publish(changes);
        return;
    }
    waiting_.push_back(
        {std::move(transaction), lastNumber_, std::move(before), std::move(changes), {}});
}

void Keeper::whenKept(Task task) {
    if (waiting_.empty()) return task({});
    if (!isTransaction_) task = [task = std::move(task)](const StoreFault&) { task({}); };
    waiting_.back().tasks.push_back(std::move(task));
}

void Keeper::poll() {
    release(pipeline_.progress());
}

void Keeper::flush() {
    while (!waiting_.empty())
        release(pipeline_.wait());
}

void Keeper::release(const CommitPipeline::Progress& progress) {
    while (!waiting_.empty() && waiting_.front().number <= progress.kept) {
        const Waiting kept = std::move(waiting_.front());
        waiting_.pop_front();
        if (kept_ && kept.transaction != nullptr)
            kept_(std::chrono::steady_clock::now() - kept.begin);
        feed_.publish(kept.changes);
        for (const Task& task : kept.tasks)
            task({});
    }
    if (!progress.fault.empty()) takeBack(progress.fault);
}

void Keeper::takeBack(const StoreFault& fault) {
    const std::deque<Waiting> dropped = std::exchange(waiting_, {});
    report(refusal("qos-agent", "--store: " + fault + "; back to what is kept"));
    undo(dropped);
    for (const Waiting& each : dropped)
        for (const Task& task : each.tasks)
            task(fault);
}

void Keeper::undo(const std::deque<Waiting>& dropped) {
    if (dropped.empty()) return pipeline_.resume();
    std::vector<TransactionPtr> transactions;
    for (const Waiting& each : dropped) {
        if (each.transaction != nullptr) transactions.push_back(each.transaction);
        feed_.withhold(each.changes);
    }
    const StoreFault fault =
        QosAgent::takeBack(transactions, dropped.front().before, store_, database_, configuration_);
    if (!fault.empty()) {
        report(refusal("qos-agent", "--store: " + fault));
        std::_Exit(kUnusable);
    }
    // The inputs are as they are kept; the state need not be as it was.
    transactions.push_back(std::make_shared<const Transaction>(collector_.take()));
    for (const TransactionPtr& transaction : transactions)
        for (const RecordEdit& edit : transaction->edits)
            carried_.add(edit);
    tree_ = configuration_.tree();
    lastNumber_ = store_.lastNumber();
    feed_.publish(feed_.collect());
    pipeline_.resume();
}

}  // namespace QosAgent
