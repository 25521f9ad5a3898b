#include "agent/output/Table.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <numeric>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "agent/json/Visible.h"
#include "agent/output/Folding.h"
#include "agent/output/MatchText.h"
#include "agent/output/NaturalOrder.h"

namespace QosAgent {
namespace {

using QosOc::Classifier::Type;
using QosOc::Config::TermConditions;
using QosOc::Config::TermConditionsIpConfig;

constexpr std::size_t kColumns = 5;
constexpr std::size_t kGap = 2;
constexpr std::size_t kMatchColumn = 3;
/// A wider column of matches is folded to this width before any name is folded.
constexpr std::size_t kMatchWidth = 24;
/// No column is folded to less, even if the row does not fit then.
constexpr std::size_t kLeastWidth = 8;
/// If nothing is folded, a wider cell moves only the following cells of its row: one long name must
/// not widen every row.
constexpr std::size_t kAlignedWidth = 128;
constexpr std::string_view kNothing = "-";
constexpr std::string_view kNoClassifiers = "no classifier is published";

using Widths = std::array<std::size_t, kColumns>;

/// Characters after which a text may be broken.
constexpr std::string_view kNameSigns = ",-_.:/ ";
constexpr std::string_view kValueSigns = ", ";

struct Cell {
    std::string text;
    std::size_t indent = 0;  ///< of the lines after the first
    std::string_view signs = kNameSigns;
};

using Row = std::array<Cell, kColumns>;

Cell shown(std::string_view text) {
    return {text.empty() ? std::string(kNothing) : visibleName(text)};
}

std::vector<std::string> linesOf(const Cell& cell, std::size_t width) {
    return folded(cell.text, width, cell.indent, cell.signs);
}

std::vector<std::uint8_t> valuesOf(const TermConditionsIpConfig& family) {
    std::vector<std::uint8_t> values;
    if (family.dscp) values.push_back(*family.dscp);
    std::ranges::copy(family.dscpSet, std::back_inserter(values));
    return values;
}

template <class Map>
std::vector<const typename Map::Member*> naturallySorted(const Map& map) {
    std::vector<const typename Map::Member*> members;
    members.reserve(map.size());
    for (const auto& member : map)
        members.push_back(&member);
    std::ranges::sort(members, naturallyBelow,
                      [](const auto* member) { return member->key.view(); });
    return members;
}

Cell matchOf(Type type, const std::optional<TermConditions>& conditions) {
    if (!conditions) return shown("");
    std::string text =
        matchText(Vex::enumText(type), valuesOf(conditions->ipv4), valuesOf(conditions->ipv6));
    if (text.empty()) return shown("");
    const std::size_t indent = text.find(kDscpTitle) + kDscpTitle.size();
    return {std::move(text), indent, kValueSigns};
}

Row rowOf(const QosOc::State::Classifier& classifier, const QosOc::State::Term& term) {
    const Type type = classifier.state().type;
    return {shown(classifier.name()), shown(Vex::enumText(type)), shown(term.id),
            matchOf(type, term.conditions),
            shown(term.actions ? term.actions->targetGroup.view() : "")};
}

void appendClassifier(std::vector<Row>& rows, const QosOc::State::Classifier& classifier) {
    const QosOc::State::Terms* terms = classifier.terms();
    if (terms != nullptr && !terms->term().empty()) {
        for (const auto* member : naturallySorted(terms->term()))
            rows.push_back(rowOf(classifier, member->value));
        return;
    }
    rows.push_back({shown(classifier.name()), shown(Vex::enumText(classifier.state().type)),
                    shown(""), shown(""), shown("")});
}

/// The layout of the rows: the widths of the columns, and whether wider cells are folded.
struct Layout {
    Widths widths{};
    bool folds = false;
};

Widths widthsOf(const std::vector<Row>& rows, std::size_t most) {
    Widths widths{};
    for (const Row& row : rows)
        for (std::size_t i = 0; i < kColumns; ++i)
            if (const std::size_t width = widthOf(row[i].text); width <= most)
                widths[i] = std::max(widths[i], width);
    return widths;
}

/// Narrows the columns until the row fits: the matches first, then the widest column each time.
void fit(Widths& widths, std::size_t room) {
    const std::size_t gaps = kGap * (kColumns - 1);
    std::size_t total = std::accumulate(widths.begin(), widths.end(), gaps);
    std::size_t& match = widths[kMatchColumn];
    if (total > room && match > kMatchWidth) {
        const std::size_t taken = std::min(match - kMatchWidth, total - room);
        match -= taken;
        total -= taken;
    }
    for (; total > room; --total) {
        auto* const widest = std::max_element(widths.begin(), widths.end());
        if (*widest <= kLeastWidth) return;
        --*widest;
    }
}

/// Returns the line with this number of a row.
std::string joined(const std::array<std::vector<std::string>, kColumns>& cells, std::size_t number,
                   const Widths& widths) {
    std::string joined;
    for (std::size_t i = 0; i < kColumns; ++i) {
        const std::string line = number < cells[i].size() ? cells[i][number] : "";
        joined += line;
        const std::size_t width = widthOf(line);
        joined.append(widths[i] - std::min(widths[i], width) + kGap, ' ');
    }
    joined.erase(joined.find_last_not_of(' ') + 1);
    return joined;
}

Layout layoutOf(const std::vector<Row>& rows, const Terminal& terminal) {
    if (!terminal.isThere()) return {widthsOf(rows, kAlignedWidth), false};
    Layout layout{widthsOf(rows, SIZE_MAX), true};
    fit(layout.widths, terminal.columns);
    return layout;
}

std::string textOf(const Row& row, const Layout& layout) {
    std::array<std::vector<std::string>, kColumns> cells;
    std::size_t height = 0;
    for (std::size_t i = 0; i < kColumns; ++i) {
        cells[i] = linesOf(row[i], layout.folds ? layout.widths[i] : SIZE_MAX);
        height = std::max(height, cells[i].size());
    }
    std::string text = joined(cells, 0, layout.widths);
    for (std::size_t number = 1; number < height; ++number)
        text.append("\n").append(joined(cells, number, layout.widths));
    return text;
}

}  // namespace

std::string stateTable(const QosOc::State::ClassifiersDir& state, const Terminal& terminal) {
    if (state.classifier().empty()) return std::string(kNoClassifiers);
    const Row head{{{"CLASSIFIER"}, {"TYPE"}, {"TERM"}, {"MATCH"}, {"TARGET GROUP"}}};
    std::vector<Row> rows{head};
    for (const auto* member : naturallySorted(state.classifier()))
        appendClassifier(rows, *member->value);
    const Layout layout = layoutOf(rows, terminal);
    std::string table = textOf(head, layout);
    if (terminal.hasColour) table.insert(0, kBold).append(kPlain);
    for (auto row = rows.begin() + 1; row != rows.end(); ++row)
        table.append("\n").append(textOf(*row, layout));
    return table;
}

}  // namespace QosAgent
