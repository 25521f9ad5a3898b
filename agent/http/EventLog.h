#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

#include "agent/feed/ChangeSet.h"

namespace QosAgent::Http {

/// The last published changes as server-sent events, numbered from 1, and the state that they led
/// to. Of an event's id, `RUN-NUMBER-TIME`, RUN differs for each log, and TIME is when the change
/// was published, in milliseconds since 1970.
class EventLog {
public:
    static constexpr std::size_t kMostEvents = 10'000;
    /// Where names are so long that the events need more, fewer are kept.
    static constexpr std::size_t kMostBytes = std::size_t{256} << 20;

    /// `run` names the log: text without a `-` or a line end.
    EventLog(std::string run, Snapshot start);

    void add(const ChangeSet& changes);

    /// The number of the last event; 0 if there was none.
    std::uint64_t last() const { return last_; }
    /// Whether a reader that has the events up to this number can be given the next one.
    bool isKeptAfter(std::uint64_t number) const {
        return number <= last_ && last_ - number <= events_.size();
    }
    /// Precondition: `isKeptAfter(number - 1)`, and `number` is at most `last()`.
    std::string_view event(std::uint64_t number) const {
        return events_[events_.size() - 1 - (last_ - number)];
    }

    const StateMap& state() const { return latest_.state; }
    /// What an event begins with that has the state as it is after the last event.
    std::string snapshotHead() const;
    /// The number in an id of this log; nothing if it is another's, or no id.
    std::optional<std::uint64_t> numberIn(std::string_view id) const;

private:
    std::string head(std::string_view kind, const Snapshot& at) const;

    std::string run_;
    Snapshot latest_;
    std::uint64_t last_ = 0;
    std::deque<std::string> events_;
    std::size_t bytes_ = 0;
};

}  // namespace QosAgent::Http
