#include "agent/output/Table.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <numeric>
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
constexpr std::size_t kGap = 2;
constexpr std::size_t kMatchColumn = 3;
/// Of the column of matches, which leaves room for names.
constexpr std::size_t kMatchWidth = 24;
constexpr std::size_t kLeastWidth = 8;
constexpr std::string_view kNothing = "-";
constexpr std::string_view kBold = "\033[1m";
constexpr std::string_view kPlain = "\033[0m";

using Widths = std::array<std::size_t, kColumns>;

constexpr Widths kWidest{SIZE_MAX, SIZE_MAX, SIZE_MAX, kMatchWidth, SIZE_MAX};

struct Cell {
    std::string text;
    std::size_t indent = 0;  ///< of the lines after the first
};

using Row = std::array<Cell, kColumns>;

Cell shown(std::string_view text) {
    if (text.empty()) return {std::string(kNothing)};
    Cell cell;
    Vex::appendEscaped(cell.text, text);
    return cell;
}

bool beginsCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
}

/// Characters, not bytes; each is taken to be one column wide.
std::size_t widthOf(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), beginsCharacter));
}

std::string_view firstCharacters(std::string_view text, std::size_t count) {
    std::size_t end = 0;
    for (; end < text.size(); ++end)
        if (beginsCharacter(text[end]) && count-- == 0) break;
    return text.substr(0, end);
}

/// What of the text fills a line of that width: up to a sign between words if there is one.
std::string_view lineOf(std::string_view text, std::size_t width) {
    const std::string_view most = firstCharacters(text, width);
    if (most.size() == text.size()) return text;
    const std::size_t sign = most.find_last_of(",-_.:/ ");
    return sign == std::string_view::npos ? most : most.substr(0, sign + 1);
}

std::vector<std::string> linesOf(const Cell& cell, std::size_t width) {
    std::vector<std::string> lines{std::string(lineOf(cell.text, width))};
    std::string_view rest = std::string_view(cell.text).substr(lines[0].size());
    const std::size_t indent = std::min(cell.indent, width / 2);
    while (!rest.empty()) {
        const std::string_view line = lineOf(rest, width - indent);
        lines.push_back(std::string(indent, ' ').append(line));
        rest.remove_prefix(line.size());
    }
    return lines;
}

std::string valuesOf(const TermConditionsIpConfig& family) {
    std::string values;
    if (family.dscp) values = std::to_string(*family.dscp);
    for (const std::uint8_t dscp : family.dscpSet)
        values.append(values.empty() ? "" : ",").append(std::to_string(dscp));
    return values;
}

void appendFamily(std::vector<Cell>& matches, const std::string& title,
                  const TermConditionsIpConfig& family) {
    const std::string values = valuesOf(family);
    if (!values.empty()) matches.push_back({title + values, title.size()});
}

/// A family other than the classifier's own is named.
std::vector<Cell> matchesOf(Type type, const std::optional<TermConditions>& conditions) {
    std::vector<Cell> matches;
    if (conditions) {
        appendFamily(matches, type == Type::IPV4 ? "dscp " : "ipv4 dscp ", conditions->ipv4);
        appendFamily(matches, type == Type::IPV6 ? "dscp " : "ipv6 dscp ", conditions->ipv6);
    }
    if (matches.empty()) matches.push_back(shown(""));
    return matches;
}

void appendTerm(std::vector<Row>& rows, const QosOc::State::Classifier& classifier,
                const QosOc::State::Term& term) {
    const Type type = classifier.state().type;
    const std::vector<Cell> matches = matchesOf(type, term.conditions);
    rows.push_back({shown(classifier.name()), shown(Vex::enumText(type)), shown(term.id),
                    matches[0], shown(term.actions ? term.actions->targetGroup.view() : "")});
    for (std::size_t i = 1; i < matches.size(); ++i)
        rows.emplace_back()[kMatchColumn] = matches[i];
}

void appendClassifier(std::vector<Row>& rows, const QosOc::State::Classifier& classifier) {
    const QosOc::State::Terms* terms = classifier.terms();
    if (terms != nullptr && !terms->term().empty()) {
        for (const auto* member : sortedByKey(terms->term()))
            appendTerm(rows, classifier, member->value);
        return;
    }
    rows.push_back({shown(classifier.name()), shown(Vex::enumText(classifier.state().type)),
                    shown(""), shown(""), shown("")});
}

Widths widthsOf(const std::vector<Row>& rows) {
    Widths widths{};
    for (const Row& row : rows)
        for (std::size_t i = 0; i < kColumns; ++i)
            for (const std::string& line : linesOf(row[i], kWidest[i]))
                widths[i] = std::max(widths[i], widthOf(line));
    return widths;
}

/// Takes from the widest column until the row fits, as long as that leaves columns to speak of.
void fit(Widths& widths, std::size_t room) {
    const std::size_t gaps = kGap * (kColumns - 1);
    std::size_t total = std::accumulate(widths.begin(), widths.end(), gaps);
    for (; total > room; --total) {
        auto* const widest = std::max_element(widths.begin(), widths.end());
        if (*widest <= kLeastWidth) return;
        --*widest;
    }
}

/// The line of that number in a row.
std::string joined(const std::array<std::vector<std::string>, kColumns>& cells, std::size_t number,
                   const Widths& widths) {
    std::string joined;
    for (std::size_t i = 0; i < kColumns; ++i) {
        const std::string line = number < cells[i].size() ? cells[i][number] : "";
        joined += line;
        joined.append(widths[i] - widthOf(line) + kGap, ' ');
    }
    joined.erase(joined.find_last_not_of(' ') + 1);
    return joined;
}

std::string textOf(const Row& row, const Widths& widths) {
    std::array<std::vector<std::string>, kColumns> cells;
    std::size_t height = 0;
    for (std::size_t i = 0; i < kColumns; ++i) {
        cells[i] = linesOf(row[i], widths[i]);
        height = std::max(height, cells[i].size());
    }
    std::string text = joined(cells, 0, widths);
    for (std::size_t number = 1; number < height; ++number)
        text.append("\n").append(joined(cells, number, widths));
    return text;
}

}  // namespace

std::string stateTable(const QosOc::State::ClassifiersDir& state, const Terminal& terminal) {
    const Row head{{{"CLASSIFIER"}, {"TYPE"}, {"TERM"}, {"MATCH"}, {"TARGET GROUP"}}};
    std::vector<Row> rows{head};
    for (const auto* member : sortedByKey(state.classifier()))
        appendClassifier(rows, *member->value);
    Widths widths = widthsOf(rows);
    if (terminal.isThere()) fit(widths, terminal.columns);
    std::string table = textOf(head, widths);
    if (terminal.hasColour) table.insert(0, kBold).append(kPlain);
    for (auto row = rows.begin() + 1; row != rows.end(); ++row)
        table.append("\n").append(textOf(*row, widths));
    return table;
}

}  // namespace QosAgent
