#include "agent/output/Table.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <vector>

#include "agent/openconfig/SortedState.h"
#include "platform/Vex/Escape.h"

namespace QosAgent {
namespace {

using QosOc::Classifier::Type;
using QosOc::Config::TermConditions;
using QosOc::Config::TermConditionsIpConfig;

constexpr std::size_t kColumns = 5;
/// Leaves room for names on a terminal of 80 columns.
constexpr std::size_t kMatchWidth = 24;
constexpr std::string_view kNothing = "-";

using Row = std::array<std::string, kColumns>;

std::string shown(std::string_view text) {
    if (text.empty()) return std::string(kNothing);
    std::string out;
    Vex::appendEscaped(out, text);
    return out;
}

/// Characters, not bytes; each is taken to be one column wide.
std::size_t widthOf(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    }));
}

std::vector<std::string> valuesOf(const TermConditionsIpConfig& family) {
    std::vector<std::string> values;
    if (family.dscp) values.push_back(std::to_string(*family.dscp));
    for (const std::uint8_t dscp : family.dscpSet)
        values.push_back(std::to_string(dscp));
    return values;
}

/// Appends lines of comma-separated values, none much wider than the column.
void appendFamily(std::vector<std::string>& lines, const std::string& title,
                  const TermConditionsIpConfig& family) {
    const std::vector<std::string> values = valuesOf(family);
    if (values.empty()) return;
    std::string line = title;
    for (const std::string& value : values) {
        const bool isFirst = &value == &values.front();
        if (!isFirst) line += ',';
        if (line.size() + value.size() > kMatchWidth) {
            lines.push_back(line);
            line.assign(title.size(), ' ');
        }
        line += value;
    }
    lines.push_back(line);
}

/// A family other than the classifier's own is named.
std::vector<std::string> matchLines(Type type, const std::optional<TermConditions>& conditions) {
    std::vector<std::string> lines;
    if (conditions) {
        appendFamily(lines, type == Type::IPV4 ? "dscp " : "ipv4 dscp ", conditions->ipv4);
        appendFamily(lines, type == Type::IPV6 ? "dscp " : "ipv6 dscp ", conditions->ipv6);
    }
    if (lines.empty()) lines.emplace_back(kNothing);
    return lines;
}

void appendTerm(std::vector<Row>& rows, const QosOc::State::Classifier& classifier,
                const QosOc::State::Term& term) {
    const Type type = classifier.state().type;
    const std::vector<std::string> lines = matchLines(type, term.conditions);
    const std::string group = shown(term.actions ? term.actions->targetGroup.view() : "");
    rows.push_back(
        {shown(classifier.name()), Vex::enumText(type), shown(term.id), lines[0], group});
    for (std::size_t i = 1; i < lines.size(); ++i)
        rows.push_back({"", "", "", lines[i], ""});
}

void appendClassifier(std::vector<Row>& rows, const QosOc::State::Classifier& classifier) {
    const QosOc::State::Terms* terms = classifier.terms();
    if (terms != nullptr && !terms->term().empty()) {
        for (const auto* member : sortedByKey(terms->term()))
            appendTerm(rows, classifier, member->value);
        return;
    }
    const std::string nothing(kNothing);
    rows.push_back({shown(classifier.name()), Vex::enumText(classifier.state().type), nothing,
                    nothing, nothing});
}

std::array<std::size_t, kColumns> widthsOf(const std::vector<Row>& rows) {
    std::array<std::size_t, kColumns> widths{};
    for (const Row& row : rows)
        for (std::size_t i = 0; i < kColumns; ++i)
            widths[i] = std::max(widths[i], widthOf(row[i]));
    return widths;
}

std::string joined(const Row& row, const std::array<std::size_t, kColumns>& widths) {
    std::string line;
    for (std::size_t i = 0; i < kColumns; ++i) {
        line += row[i];
        if (i + 1 < kColumns) line.append(widths[i] - widthOf(row[i]) + 2, ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

}  // namespace

std::string stateTable(const QosOc::State::ClassifiersDir& state) {
    std::vector<Row> rows{{"CLASSIFIER", "TYPE", "TERM", "MATCH", "TARGET GROUP"}};
    for (const auto* member : sortedByKey(state.classifier()))
        appendClassifier(rows, *member->value);
    const auto widths = widthsOf(rows);
    std::string table;
    for (const Row& row : rows) {
        if (!table.empty()) table += '\n';
        table += joined(row, widths);
    }
    return table;
}

}  // namespace QosAgent
