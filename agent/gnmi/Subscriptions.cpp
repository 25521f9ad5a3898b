#include "agent/gnmi/Subscriptions.h"

#include <gnmi.pb.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

#include "agent/gnmi/Checks.h"
#include "agent/gnmi/Messages.h"

namespace QosAgent::Gnmi {

namespace {

using std::chrono::nanoseconds;

nanoseconds nanosecondsOf(std::uint64_t count) {
    // A century: longer intervals make no difference, and sums with them still fit.
    constexpr std::uint64_t kMost = std::uint64_t{100} * 365 * 24 * 3600 * 1'000'000'000;
    return nanoseconds(static_cast<std::int64_t>(std::min(count, kMost)));
}

std::optional<Refusal> checkInterval(std::string_view name, nanoseconds interval) {
    if (interval.count() == 0 || interval >= kLeastInterval) return std::nullopt;
    return Refusal{Code::invalidArgument,
                   std::string(name) + " of " + std::to_string(interval.count()) +
                       " ns: the least is 100000000 (100 ms), and 0 means the least"};
}

Query emptyQuery(std::size_t depth) {
    Query query;
    query.depth = depth;
    return query;
}

/// Reads one list.
class Reading {
public:
    Reading(const gnmi::SubscriptionList& message, std::size_t depth)
        : message_(message), depth_(depth) {
        list_.all = list_.onChange = emptyQuery(depth);
    }

    std::optional<Refusal> read() {
        if (!gnmi::SubscriptionList::Mode_IsValid(message_.mode()))
            return Refusal{Code::invalidArgument, "an unknown mode of the list"};
        list_.mode = static_cast<StreamMode>(message_.mode());
        if (auto wrong = checkModels(message_.use_models())) return wrong;
        const auto encoding = encodingOf(message_.encoding());
        if (const auto* wrong = std::get_if<Refusal>(&encoding)) return *wrong;
        list_.encoding = std::get<Encoding>(encoding);
        list_.target = message_.prefix().target();
        list_.updatesOnly = message_.updates_only();
        if (message_.subscription().empty())
            return Refusal{Code::invalidArgument, "a list without a subscription"};
        if (static_cast<std::size_t>(message_.subscription_size()) > kMostSubscriptions)
            return Refusal{Code::invalidArgument, "more than 64 subscriptions in a list"};
        for (const gnmi::Subscription& subscription : message_.subscription())
            if (auto wrong = readSubscription(subscription)) return wrong;
        finishKey();
        return std::nullopt;
    }

    SubscriptionList take() { return std::move(list_); }

private:
    std::optional<Refusal> readSubscription(const gnmi::Subscription& subscription) {
        auto path =
            joined(message_.has_prefix() ? &message_.prefix() : nullptr, subscription.path());
        if (auto* wrong = std::get_if<Refusal>(&path)) return std::move(*wrong);
        auto pattern = Pattern::of(std::get<RequestPath>(std::move(path)));
        if (auto* wrong = std::get_if<Refusal>(&pattern)) return std::move(*wrong);
        const Pattern& meant = std::get<Pattern>(pattern);
        list_.all.patterns.push_back(meant);
        if (list_.mode != StreamMode::stream) return std::nullopt;
        if (auto wrong = readTrigger(subscription, meant)) {
            wrong->message = shown(meant.path()) + ": " + wrong->message;
            return wrong;
        }
        return std::nullopt;
    }

    std::optional<Refusal> readTrigger(const gnmi::Subscription& subscription,
                                       const Pattern& pattern) {
        const nanoseconds heartbeat = nanosecondsOf(subscription.heartbeat_interval());
        if (auto wrong = checkInterval("heartbeat_interval", heartbeat)) return wrong;
        switch (subscription.mode()) {
            case gnmi::TARGET_DEFINED:
                if (subscription.sample_interval() != 0)
                    return Refusal{Code::invalidArgument,
                                   "sample_interval is not for TARGET_DEFINED"};
                [[fallthrough]];
            case gnmi::ON_CHANGE:
                list_.onChange.patterns.push_back(pattern);
                break;
            case gnmi::SAMPLE: {
                const nanoseconds interval = nanosecondsOf(subscription.sample_interval());
                if (auto wrong = checkInterval("sample_interval", interval)) return wrong;
                addRepetition(pattern, std::max(interval, kLeastInterval),
                              subscription.suppress_redundant());
                // Without suppression the samples send everything more often than is asked for.
                if (!subscription.suppress_redundant()) return std::nullopt;
                break;
            }
            default:
                return Refusal{Code::invalidArgument, "an unknown mode of a subscription"};
        }
        if (heartbeat.count() > 0) addRepetition(pattern, heartbeat, false);
        return std::nullopt;
    }

    void addRepetition(const Pattern& pattern, nanoseconds interval, bool onlyChanged) {
        for (Repetition& repetition : list_.repetitions)
            if (repetition.interval == interval && repetition.onlyChanged == onlyChanged) {
                repetition.query.patterns.push_back(pattern);
                return;
            }
        Repetition added{emptyQuery(depth_), interval, onlyChanged};
        added.query.patterns.push_back(pattern);
        list_.repetitions.push_back(std::move(added));
    }

    void finishKey() {
        std::string& key = list_.sharedKey;
        key = std::to_string(static_cast<int>(list_.encoding)) + ' ' + std::to_string(depth_) +
              ' ' + std::to_string(list_.target.size()) + list_.target;
        for (const Pattern& pattern : list_.onChange.patterns)
            key.append("\n").append(toText(pattern.path()));
    }

    const gnmi::SubscriptionList& message_;
    std::size_t depth_;
    SubscriptionList list_;
};

}  // namespace

OrRefusal<SubscriptionList> subscriptionsOf(const gnmi::SubscribeRequest& request) {
    const auto extensions = extensionsOf(request.extension(), Allowed::depth);
    if (const auto* wrong = std::get_if<Refusal>(&extensions)) return *wrong;
    if (!request.has_subscribe())
        return Refusal{Code::invalidArgument, "the first message of a stream has to subscribe"};
    Reading reading(request.subscribe(), std::get<Extensions>(extensions).depth);
    if (auto wrong = reading.read()) return *wrong;
    return reading.take();
}

}  // namespace QosAgent::Gnmi
