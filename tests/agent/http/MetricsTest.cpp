#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "agent/http/Metrics.h"

namespace QosAgent::Http {
namespace {

using prometheus::MetricType;

/// Figures in which everything that may be absent is there.
Readings allReadings() {
    Readings readings;
    Statistics& statistics = readings.statistics;
    statistics.version = "1.2";
    statistics.requests.lines["gnmi"] = {3, 1};
    statistics.requests.applyTimes.add(std::chrono::microseconds(50));
    statistics.requests.waiting = 4;
    statistics.requests.turnedAway = 5;
    statistics.feed = {6, 7, 8, 9, 10};
    statistics.machines = {{"QosOc::AclStateSm", 11}};
    statistics.socketConnections = 12;
    statistics.grpc = {19, 20, 21};
    statistics.store.emplace().isAway = true;
    readings.classifiers = 13;
    readings.terms = 14;
    readings.door = {{{200, 15}}, 16, 17, 18};
    return readings;
}

/// The lines about one metric, without what describes it.
std::string valuesOf(const std::string& name, const std::string& text) {
    std::string values;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find('\n', at) + 1;
        const std::string line = text.substr(at, end - at);
        if (line.starts_with("qos_agent_" + name)) values += line;
        at = end;
    }
    return values;
}

TEST(MetricsTest, writesOneValueForEachCombinationOfLabels) {
    const std::string text = metricsText(allReadings());
    EXPECT_EQ(valuesOf("lines", text),
              "qos_agent_lines_total{door=\"gnmi\",result=\"applied\"} 3\n"
              "qos_agent_lines_total{door=\"gnmi\",result=\"refused\"} 1\n");
    EXPECT_EQ(valuesOf("published", text),
              "qos_agent_published_changes_total{kind=\"update\"} 6\n"
              "qos_agent_published_changes_total{kind=\"delete\"} 7\n");
    EXPECT_EQ(valuesOf("http", text),
              "qos_agent_http_connections 16\n"
              "qos_agent_http_answers_total{code=\"200\"} 15\n"
              "qos_agent_http_event_streams 17\n"
              "qos_agent_http_waiting_events 18\n");
    EXPECT_EQ(valuesOf("grpc", text),
              "qos_agent_grpc_streams 19\n"
              "qos_agent_grpc_waiting_bytes 20\n");
    EXPECT_EQ(valuesOf("merged", text),
              "qos_agent_merged_values_total{reader=\"subscriber\"} 10\n"
              "qos_agent_merged_values_total{reader=\"grpc\"} 21\n");
    EXPECT_EQ(valuesOf("build", text), "qos_agent_build_info{version=\"1.2\"} 1\n");
    EXPECT_EQ(valuesOf("machines", text), "qos_agent_machines{type=\"QosOc::AclStateSm\"} 11\n");
    EXPECT_EQ(valuesOf("store", text), "qos_agent_store_away 1\n");
}

TEST(MetricsTest, writesTimesAsACumulativeHistogram) {
    const std::string text = valuesOf("apply", metricsText(allReadings()));
    EXPECT_NE(text.find("_bucket{le=\"2.5e-05\"} 0\n"), std::string::npos) << text;
    EXPECT_NE(text.find("_bucket{le=\"0.0001\"} 1\n"), std::string::npos);
    EXPECT_NE(text.find("_bucket{le=\"+Inf\"} 1\n"), std::string::npos);
    EXPECT_NE(text.find("_count 1\n"), std::string::npos);
    EXPECT_NE(text.find("_sum 5e-05"), std::string::npos);
}

TEST(MetricsTest, leavesOutWhatThereIsNot) {
    const std::string text = metricsText({});
    for (const char* name : {"lines", "machines", "store", "commit"})
        EXPECT_EQ(valuesOf(name, text), "");
    EXPECT_EQ(valuesOf("terms", text), "qos_agent_terms 0\n");
}

TEST(MetricsTest, escapesLabels) {
    Readings readings;
    readings.statistics.requests.lines["a\"b\\c\nd"] = {1, 0};
    EXPECT_NE(metricsText(readings).find(R"({door="a\"b\\c\nd",result="applied"} 1)"),
              std::string::npos);
}

std::string typeOf(const MetricRow& row) {
    switch (row.type) {
        case MetricType::Counter:
            return "counter";
        case MetricType::Gauge:
            return "gauge";
        default:
            return "histogram";
    }
}

/// Set QOS_UPDATE_DOCS in the environment to have the page written anew.
TEST(MetricsPageTest, listsEveryMetric) {
    constexpr const char* page = "docs/metrics.md";
    const std::string begin =
        "| metric | type | labels | what it says | look when |\n"
        "|---|---|---|---|---|\n";
    std::string rows = begin;
    for (const MetricRow& row : metricTable())
        rows += std::string("| `") + row.name + "` | " + typeOf(row) + " | " + row.labels + " | " +
                row.help + " | " + row.alert + " |\n";
    std::ifstream in(page);
    std::string text(std::istreambuf_iterator<char>(in), {});
    const std::size_t at = text.find(begin);
    ASSERT_NE(at, std::string::npos);
    if (std::getenv("QOS_UPDATE_DOCS") != nullptr) {
        text = text.substr(0, at) + rows;
        std::ofstream(page) << text;
    }
    EXPECT_EQ(text.substr(at), rows);
}

TEST(MetricsTest, namesEachMetricByTheConventions) {
    for (const MetricRow& row : metricTable()) {
        const std::string name = row.name;
        EXPECT_TRUE(name.starts_with("qos_agent_")) << name;
        EXPECT_EQ(name.ends_with("_total"), row.type == MetricType::Counter) << name;
        EXPECT_EQ(name.ends_with("_seconds"), row.type == MetricType::Histogram) << name;
        for (const auto& value : row.values(allReadings())) {
            std::string labels;
            for (const auto& label : value.label)
                labels.append(labels.empty() ? "" : ", ").append(label.name);
            EXPECT_EQ(labels, row.labels) << name;
        }
    }
}

}  // namespace
}  // namespace QosAgent::Http
