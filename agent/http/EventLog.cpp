#include "agent/http/EventLog.h"

#include <charconv>
#include <chrono>
#include <utility>

#include "agent/json/JsonWriter.h"

namespace QosAgent::Http {
namespace {

/// Where the state tree lies in the database.
constexpr std::string_view kStateRoot = "qos/openconfig/state/classifiers/";

/// The change as a change-stream line.
void appendLine(std::string& out, const ChangeSet::Step& step) {
    out += step.value == nullptr ? "{\"delete\":" : "{\"update\":";
    appendQuoted(out, std::string(kStateRoot) + step.path);
    if (step.value != nullptr) out.append(",\"value\":").append(step.value->json);
    out += '}';
}

}  // namespace

EventLog::EventLog(std::string run, Snapshot start)
    : run_(std::move(run)), latest_(std::move(start)) {}

void EventLog::add(const ChangeSet& changes) {
    for (const ChangeSet::Step& step : changes.steps) {
        ++last_;
        std::string event = head("change", changes.after);
        appendLine(event, step);
        bytes_ += event.append("\n\n").size();
        events_.push_back(std::move(event));
        while (events_.size() > kMostEvents || (bytes_ > kMostBytes && events_.size() > 1)) {
            bytes_ -= events_.front().size();
            events_.pop_front();
        }
    }
    latest_ = changes.after;
}

std::string EventLog::head(std::string_view kind, const Snapshot& at) const {
    using std::chrono::milliseconds;
    const auto time = std::chrono::duration_cast<milliseconds>(at.time.time_since_epoch());
    std::string text = "event: ";
    return text.append(kind)
        .append("\nid: ")
        .append(run_ + '-' + std::to_string(last_) + '-' + std::to_string(time.count()))
        .append("\ndata: ");
}

std::string EventLog::snapshotHead() const {
    return head("snapshot", latest_);
}

std::optional<std::uint64_t> EventLog::numberIn(std::string_view id) const {
    if (!id.starts_with(run_ + '-')) return {};
    id.remove_prefix(run_.size() + 1);
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(id.data(), id.data() + id.size(), number);
    const bool isNumber = error == std::errc() && end != id.data() + id.size() && *end == '-';
    return isNumber ? std::optional(number) : std::nullopt;
}

}  // namespace QosAgent::Http
