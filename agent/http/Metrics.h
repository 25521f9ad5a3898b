#pragma once

#include <prometheus/client_metric.h>
#include <prometheus/metric_type.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "agent/service/Statistics.h"

namespace QosAgent::Http {

/// What this door knows about itself.
struct DoorReadings {
    std::map<unsigned, std::uint64_t> answers;  ///< by HTTP status
    std::size_t connections = 0;
    std::size_t eventStreams = 0;
    std::uint64_t waitingEvents = 0;  ///< that the streams' readers have not been given
};

/// All that metrics are made of.
struct Readings {
    Statistics statistics;
    std::size_t classifiers = 0;
    std::size_t terms = 0;
    DoorReadings door;
};

/// A row of the one table of all metrics.
struct MetricRow {
    const char* name;
    prometheus::MetricType type;
    const char* labels;  ///< their names, for the page about metrics; may be empty
    const char* help;
    const char* alert;  ///< when somebody should look, for the page; may be empty
    /// One value for each combination of labels that there is.
    std::vector<prometheus::ClientMetric> (*values)(const Readings& readings);
};

std::span<const MetricRow> metricTable();

/// The metrics in the text form of Prometheus. What has no value is left out.
std::string metricsText(const Readings& readings);

}  // namespace QosAgent::Http
