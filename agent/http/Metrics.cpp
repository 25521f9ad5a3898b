#include "agent/http/Metrics.h"

#include <prometheus/metric_family.h>
#include <prometheus/text_serializer.h>

#include <chrono>
#include <limits>
#include <utility>

namespace QosAgent::Http {
namespace {

using prometheus::ClientMetric;
using prometheus::MetricType;
using Values = std::vector<ClientMetric>;
using Labels = std::vector<ClientMetric::Label>;

template <class Number>
ClientMetric counter(Number value, Labels labels = {}) {
    ClientMetric metric;
    metric.label = std::move(labels);
    metric.counter.value = static_cast<double>(value);
    return metric;
}

template <class Number>
ClientMetric gauge(Number value, Labels labels = {}) {
    ClientMetric metric;
    metric.label = std::move(labels);
    metric.gauge.value = static_cast<double>(value);
    return metric;
}

ClientMetric histogram(const TimeHistogram& times) {
    ClientMetric metric;
    std::uint64_t count = 0;
    for (std::size_t at = 0; at < times.counts.size(); ++at) {
        count += times.counts[at];
        const bool isLast = at == times.kBounds.size();
        metric.histogram.bucket.push_back(
            {count, isLast ? std::numeric_limits<double>::infinity() : times.kBounds.at(at)});
    }
    metric.histogram.sample_count = count;
    metric.histogram.sample_sum = std::chrono::duration<double>(times.sum).count();
    return metric;
}

Values lines(const Readings& readings) {
    Values values;
    for (const auto& [door, lines] : readings.statistics.requests.lines) {
        values.push_back(counter(lines.applied, {{"door", door}, {"result", "applied"}}));
        values.push_back(counter(lines.refused, {{"door", door}, {"result", "refused"}}));
    }
    return values;
}

Values publishedChanges(const Readings& readings) {
    const FeedStatistics& feed = readings.statistics.feed;
    return {counter(feed.updates, {{"kind", "update"}}),
            counter(feed.deletes, {{"kind", "delete"}})};
}

Values mergedValues(const Readings& readings) {
    const Statistics& statistics = readings.statistics;
    return {counter(statistics.feed.merged, {{"reader", "subscriber"}}),
            counter(statistics.grpc.merged, {{"reader", "grpc"}})};
}

Values machines(const Readings& readings) {
    Values values;
    for (const auto& [type, live] : readings.statistics.machines)
        values.push_back(gauge(live, {{"type", type}}));
    return values;
}

Values httpAnswers(const Readings& readings) {
    Values values;
    for (const auto& [status, count] : readings.door.answers)
        values.push_back(counter(count, {{"code", std::to_string(status)}}));
    return values;
}

Values storeAway(const Readings& readings) {
    const auto& store = readings.statistics.store;
    return store ? Values{gauge(store->isAway ? 1 : 0)} : Values{};
}

Values commitTimes(const Readings& readings) {
    const auto& store = readings.statistics.store;
    return store ? Values{histogram(store->commitTimes)} : Values{};
}

constexpr MetricRow kTable[] = {
    {"qos_agent_build_info", MetricType::Gauge, "version",
     "Always 1; the label has the version of the program.", "",
     [](const Readings& r) -> Values {
         return {gauge(1, {{"version", r.statistics.version}})};
     }},
    {"qos_agent_lines_total", MetricType::Counter, "door, result",
     "Lines of change streams that were applied or refused, by the door through which they came.",
     "lines with the result refused increase", lines},
    {"qos_agent_apply_seconds", MetricType::Histogram, "",
     "Time to apply a line, with all that follows from it in the state.",
     "the 99th percentile stays above what your changes usually take",
     [](const Readings& r) -> Values { return {histogram(r.statistics.requests.applyTimes)}; }},
    {"qos_agent_waiting_requests", MetricType::Gauge, "",
     "Requests that are not begun. At most 1,024 may wait.", "it stays above 0 for minutes",
     [](const Readings& r) -> Values { return {gauge(r.statistics.requests.waiting)}; }},
    {"qos_agent_busy_requests_total", MetricType::Counter, "",
     "Requests that were turned away because too many were waiting.", "it increases",
     [](const Readings& r) -> Values { return {counter(r.statistics.requests.turnedAway)}; }},
    {"qos_agent_published_changes_total", MetricType::Counter, "kind",
     "Published changes of the state tree since the doors opened, by kind: update or delete.",
     "it increases although nobody configures anything", publishedChanges},
    {"qos_agent_classifiers", MetricType::Gauge, "", "Classifiers in the state tree.",
     "it drops to 0", [](const Readings& r) -> Values { return {gauge(r.classifiers)}; }},
    {"qos_agent_terms", MetricType::Gauge, "", "Terms in the state tree.", "it drops to 0",
     [](const Readings& r) -> Values { return {gauge(r.terms)}; }},
    {"qos_agent_machines", MetricType::Gauge, "type",
     "Machines of the plug-in that are alive, by type.",
     "it increases while classifiers and terms stay the same", machines},
    {"qos_agent_subscribers", MetricType::Gauge, "",
     "Readers of the feed within the program: one for each door that follows the state.", "",
     [](const Readings& r) -> Values { return {gauge(r.statistics.feed.subscribers)}; }},
    {"qos_agent_waiting_change_sets", MetricType::Gauge, "",
     "Change sets, one for each request, that subscribers have not taken.",
     "it stays above 0 for minutes",
     [](const Readings& r) -> Values { return {gauge(r.statistics.feed.waiting)}; }},
    {"qos_agent_merged_values_total", MetricType::Counter, "reader",
     "Values that were merged into later ones: of a subscriber that fell behind, or of a gRPC "
     "stream whose client fell behind or asked for samples.",
     "those of subscriber increase", mergedValues},
    {"qos_agent_grpc_streams", MetricType::Gauge, "", "Streams of gNMI Subscribe that are open.",
     "", [](const Readings& r) -> Values { return {gauge(r.statistics.grpc.streams)}; }},
    {"qos_agent_grpc_waiting_bytes", MetricType::Gauge, "",
     "Bytes of changes that the clients of gRPC streams have not taken, all together.",
     "it comes near 268435456, where streams are ended",
     [](const Readings& r) -> Values { return {gauge(r.statistics.grpc.waitingBytes)}; }},
    {"qos_agent_socket_connections", MetricType::Gauge, "",
     "Connections to the Unix socket of --listen. At most 256 are open.", "it comes near 256",
     [](const Readings& r) -> Values { return {gauge(r.statistics.socketConnections)}; }},
    {"qos_agent_http_connections", MetricType::Gauge, "",
     "Connections to this door. At most 256 are served.", "it comes near 256",
     [](const Readings& r) -> Values { return {gauge(r.door.connections)}; }},
    {"qos_agent_http_answers_total", MetricType::Counter, "code",
     "Answers of this door, by HTTP status.", "those of 503 increase", httpAnswers},
    {"qos_agent_http_event_streams", MetricType::Gauge, "", "Readers of /api/events.", "",
     [](const Readings& r) -> Values { return {gauge(r.door.eventStreams)}; }},
    {"qos_agent_http_waiting_events", MetricType::Gauge, "",
     "Events that the readers of /api/events have not been given, all together.",
     "it stays above 0 for minutes",
     [](const Readings& r) -> Values { return {gauge(r.door.waitingEvents)}; }},
    {"qos_agent_store_away", MetricType::Gauge, "",
     "1 while the store cannot be reached, else 0. Left out without a store.", "it is 1",
     storeAway},
    {"qos_agent_commit_seconds", MetricType::Histogram, "",
     "Time from a transaction until the store keeps it. Left out without a store.",
     "the 99th percentile stays above what your disk usually takes", commitTimes},
};

}  // namespace

std::span<const MetricRow> metricTable() {
    return kTable;
}

std::string metricsText(const Readings& readings) {
    std::vector<prometheus::MetricFamily> families;
    for (const MetricRow& row : metricTable())
        if (Values values = row.values(readings); !values.empty())
            families.push_back({row.name, row.help, row.type, std::move(values)});
    return prometheus::TextSerializer().Serialize(families);
}

}  // namespace QosAgent::Http
