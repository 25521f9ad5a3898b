#include "tests/model/Agent.h"

#include <algorithm>

#include "agent/database/Document.h"
#include "agent/database/Printer.h"
#include "platform/QosOc/State/ClassifiersDir.h"
#include "platform/Vex/TraceHandle.h"

namespace Model {
namespace {

std::string text(const Orin::String& string) {
    return std::string(string.view());
}

Conditions conditionsFrom(const QosOc::Config::TermConditionsIpConfig& from) {
    Conditions conditions;
    if (from.dscp) conditions.dscp = *from.dscp;
    for (const std::uint8_t value : from.dscpSet)
        conditions.dscpSet.push_back(value);
    return conditions;
}

PublishedTerm termFrom(const Orin::String& key, const QosOc::State::Term& from) {
    PublishedTerm term{text(key), text(from.stateId), {}, {}};
    if (from.id != key) term.id += " (its id is " + text(from.id) + ")";
    if (from.conditions)
        term.conditions = {conditionsFrom(from.conditions->ipv4),
                           conditionsFrom(from.conditions->ipv6)};
    if (from.actions) term.targetGroup = text(from.actions->targetGroup);
    return term;
}

std::string shown(const QosAgent::Fault& fault) {
    return std::to_string(fault.offset + 1) + ": " + fault.message;
}

/// For what lines print, which the model does not tell.
class NoOutput : public QosAgent::StreamOutput {
public:
    void line(std::string_view) override {}
    void followIs(bool) override {}
};

}  // namespace

SeenAgent::SeenAgent(bool isTraced) {
    host_.emplace(database_.entityManager());
    operations_.emplace(database_, configuration_, *host_);
    Vex::traceSinkIs([this](std::string_view line) { lines_.emplace_back(line); });
    Vex::traceLevelsIs("*", isTraced ? 10 : 0);
}

SeenAgent::~SeenAgent() {
    host_.reset();
    Vex::traceLevelsIs("*", 0);
    Vex::traceSinkIs(nullptr);
}

std::string SeenAgent::load(const std::string& document) {
    const QosAgent::JsonResult json = QosAgent::parseJson(document);
    if (const auto* fault = std::get_if<QosAgent::Fault>(&json)) return shown(*fault);
    const QosAgent::JsonValue root = std::get<QosAgent::Json>(json).root();
    if (const auto fault = QosAgent::checkDocument(database_, root)) return shown(*fault);
    QosAgent::mergeDocument(database_, root);
    return {};
}

std::string SeenAgent::start(const std::string& plugin) {
    return host_->load(plugin).value_or("");
}

std::string SeenAgent::apply(const std::string& line) {
    NoOutput output;
    const auto fault = operations_->apply(line, output);
    return fault ? shown(*fault) : "";
}

Published SeenAgent::published() const {
    const auto root = Vex::entityCast<QosOc::State::ClassifiersDir>(database_.stateTree().root);
    Published published;
    for (const auto& member : root->classifier()) {
        const QosOc::State::ClassifierState& state = member.value->state();
        const bool isIpv4 = static_cast<int>(state.type) == 0;
        PublishedClassifier classifier{text(member.key), isIpv4 ? Family::ipv4 : Family::ipv6, {}};
        if (state.name != member.key) classifier.name += " (its name is " + text(state.name) + ")";
        if (const QosOc::State::Terms* terms = member.value->terms()) {
            classifier.terms.emplace();
            for (const auto& term : terms->term())
                classifier.terms->push_back(termFrom(term.key, term.value));
        }
        published.push_back(std::move(classifier));
    }
    return published;
}

std::string SeenAgent::stateText() const {
    std::string text;
    QosAgent::JsonWriter writer(text);
    QosAgent::writeEntity(writer, *database_.stateTree().root);
    return text;
}

bool LineMatcher::isAddressOf(Id machine, std::string_view address) {
    const auto known = addressOf_.find(machine);
    if (known != addressOf_.end())
        return known->second == address && machineAt_.find(address)->second == machine;
    addressOf_.emplace(machine, address);
    machineAt_.insert_or_assign(std::string(address), machine);
    return true;
}

bool LineMatcher::matches(const Line& expected, std::string_view seen) {
    const auto passes = [&seen](std::string_view piece) {
        const bool isThere = seen.starts_with(piece);
        if (isThere) seen.remove_prefix(piece.size());
        return isThere;
    };
    const auto span = [&seen](std::string_view characters) {
        const std::size_t end = std::min(seen.find_first_not_of(characters), seen.size());
        const std::string_view piece = seen.substr(0, end);
        seen.remove_prefix(end);
        return piece;
    };
    const Point& point = *expected.point;
    seen.remove_prefix(std::min(seen.find(' '), seen.size() - 1) + 1);
    if (!passes(point.lead)) return false;
    const std::string_view line = span("0123456789");
    if (line.empty() || (point.line != 0 && line != std::to_string(point.line))) return false;
    if (!passes(point.function)) return false;
    const bool isMounter = point.lead.starts_with("QosOpenConfigClassifierStateSmMounter");
    if (isMounter && !passes("QosOc::ClassifierStateSmMounter@")) return false;
    if (expected.machine != kNobody) {
        if (!passes("0x") || !isAddressOf(expected.machine, span("0123456789abcdef"))) return false;
    }
    return passes(point.signature) && seen == expected.rest;
}

std::string LineMatcher::difference(const std::vector<Line>& expected,
                                    const std::vector<std::string>& seen) {
    for (std::size_t i = 0; i < expected.size() || i < seen.size(); ++i) {
        if (i < expected.size() && i < seen.size() && matches(expected[i], seen[i])) continue;
        std::string text = "trace line " + std::to_string(i + 1) + "\n  expected: ";
        if (i < expected.size()) {
            const Point& point = *expected[i].point;
            text += point.lead + (point.line == 0 ? "N" : std::to_string(point.line)) +
                    point.function + "(machine " + std::to_string(expected[i].machine) + ") " +
                    point.signature + expected[i].rest;
        }
        return text + "\n  seen:     " + (i < seen.size() ? seen[i] : "");
    }
    return {};
}

}  // namespace Model
