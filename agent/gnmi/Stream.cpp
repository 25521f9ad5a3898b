#include "agent/gnmi/Stream.h"

#include <algorithm>
#include <utility>

#include "agent/gnmi/Difference.h"
#include "agent/gnmi/Messages.h"

namespace QosAgent::Gnmi {

namespace {

const Refusal kTooSlow{Code::resourceExhausted,
                       "the client reads too slowly: 16 MiB of changes wait for it"};
const Refusal kAllTooSlow{Code::resourceExhausted,
                          "the clients read too slowly: 256 MiB of changes wait for all of them"};

}  // namespace

Stream::Stream(SubscriptionList list, StreamCounters& counters)
    : list_(std::move(list)), counters_(counters), queue_(counters) {
    ++counters_.streams;
    for (const Repetition& repetition : list_.repetitions)
        repeated_.emplace_back(counters).repetition = &repetition;
}

Bytes Stream::bytesOf(const Notice& notice) const {
    return std::make_shared<const std::string>(serialised(notice, list_.encoding, list_.target));
}

void Stream::begin(TreePtr tree, Clock::time_point now) {
    {
        const std::lock_guard lock(mutex_);
        addWalk({std::move(tree), list_.updatesOnly ? nullptr : &list_.all, true});
        for (Repeated& repeated : repeated_)
            repeated.due = now + repeated.repetition->interval;
    }
    wake_();
}

void Stream::poll(TreePtr tree) {
    {
        const std::lock_guard lock(mutex_);
        addWalk({std::move(tree), list_.updatesOnly ? nullptr : &list_.all, true});
    }
    wake_();
}

void Stream::publish(DeliveryPtr delivery) {
    {
        const std::lock_guard lock(mutex_);
        queue_.put(std::move(delivery));
        checkMemory();
    }
    wake_();
}

bool Stream::wantsToCollect() const {
    return std::any_of(list_.repetitions.begin(), list_.repetitions.end(),
                       [](const Repetition& repetition) { return repetition.onlyChanged; });
}

void Stream::collect(const std::vector<Notice>& notices, const Tree& before) {
    const std::lock_guard lock(mutex_);
    for (Repeated& repeated : repeated_) {
        if (!repeated.repetition->onlyChanged) continue;
        for (const Notice& notice : notices)
            repeated.changed.merge(filtered(notice, repeated.repetition->query, before), &before);
    }
    checkMemory();
}

void Stream::checkMemory() {
    std::size_t bytes = queue_.bytes();
    for (const Repeated& repeated : repeated_)
        bytes += repeated.changed.bytes();
    if (bytes > NoticeQueue::kMostBytes) failure_ = kTooSlow;
    if (counters_.waitingBytes > kMostBytesOfAll) failure_ = kAllTooSlow;
}

void Stream::tick(const TreePtr& tree, Clock::time_point now) {
    {
        const std::lock_guard lock(mutex_);
        for (Repeated& repeated : repeated_) {
            if (repeated.due > now) continue;
            // Samples that were missed are not made up for.
            const auto missed = (now - repeated.due) / repeated.repetition->interval;
            repeated.due += (missed + 1) * repeated.repetition->interval;
            if (repeated.repetition->onlyChanged) {
                repeated.isReleased = true;
                continue;
            }
            // A sample that is still being sent takes the place of this one.
            const auto isOfThis = [&](const Pending& pending) {
                return pending.query == &repeated.repetition->query;
            };
            if (repeated.isWaiting || std::any_of(pending_.begin(), pending_.end(), isOfThis))
                continue;
            addWalk({tree, &repeated.repetition->query, false});
        }
    }
    wake_();
}

std::optional<Stream::Clock::time_point> Stream::nextDue() const {
    const std::lock_guard lock(mutex_);
    std::optional<Clock::time_point> next;
    for (const Repeated& repeated : repeated_)
        if (!next || repeated.due < *next) next = repeated.due;
    return next;
}

bool Stream::beginWalk() {
    if (pending_.empty()) return false;
    Pending pending = std::move(pending_.front());
    pending_.pop_front();
    static const Query none;
    walk_ = std::make_unique<NoticeWalk>(std::move(pending.tree),
                                         pending.query == nullptr ? none : *pending.query);
    walkEndsWithSync_ = pending.endsWithSync;
    for (Repeated& repeated : repeated_)
        repeated.isWaiting = pending.query == &repeated.repetition->query;
    return true;
}

Bytes Stream::nextOfWalk() {
    if (walk_ == nullptr) return nullptr;
    if (const auto notice = walk_->next()) return bytesOf(*notice);
    walk_.reset();
    for (Repeated& repeated : repeated_)
        repeated.isWaiting = false;
    if (!std::exchange(walkEndsWithSync_, false)) return nullptr;
    isSynchronised_ = true;
    return std::make_shared<const std::string>(serialisedSync());
}

Bytes Stream::nextOfQueue() {
    if (const DeliveryPtr delivery = queue_.takeSeparate()) return {delivery, &delivery->bytes};
    const auto merged = queue_.takeMerged();
    return merged ? bytesOf(*merged) : nullptr;
}

Bytes Stream::nextOfSamples() {
    for (Repeated& repeated : repeated_) {
        if (!repeated.isReleased) continue;
        if (const auto notice = repeated.changed.takeMerged()) return bytesOf(*notice);
        repeated.isReleased = false;
    }
    return nullptr;
}

Bytes Stream::next() {
    const std::lock_guard lock(mutex_);
    for (;;) {
        if (Bytes bytes = nextOfWalk()) return bytes;
        // What changed before a later walk's tree was taken goes out before that walk.
        if (isSynchronised_) {
            if (Bytes bytes = nextOfQueue()) return bytes;
            if (Bytes bytes = nextOfSamples()) return bytes;
        }
        if (!beginWalk()) return nullptr;
    }
}

std::optional<Refusal> Stream::end() const {
    const std::lock_guard lock(mutex_);
    if (failure_) return failure_;
    const bool isComplete = list_.mode == StreamMode::once && isSynchronised_;
    if (isComplete) return Refusal{Code::ok, {}};
    return std::nullopt;
}

}  // namespace QosAgent::Gnmi
