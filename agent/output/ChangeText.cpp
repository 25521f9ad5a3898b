#include "agent/output/ChangeText.h"

#include <cstdint>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

#include "agent/json/JsonReader.h"
#include "agent/json/Visible.h"
#include "agent/output/MatchText.h"
#include "platform/Vex/UtcTime.h"

namespace QosAgent {
namespace {

constexpr std::string_view kClassifiers = "qos/openconfig/state/classifiers/classifier/";
constexpr std::string_view kAbsent = "absent";
constexpr std::string_view kArrow = " -> ";

/// `12:31:05.123Z`.
std::string timeText(ChangeText::Time now) {
    constexpr std::string_view kDay = "2026-11-22T";
    constexpr std::size_t kToThousandths = std::string_view("12:31:05.123").size();
    return Vex::utcText(now).substr(kDay.size(), kToThousandths) + 'Z';
}

/// Removes the next part of a path and returns it, with `~1` and `~0` unescaped to `/` and `~`.
std::string takePart(std::string_view& path) {
    const std::size_t end = std::min(path.find('/'), path.size());
    std::string part;
    for (std::size_t at = 0; at < end; ++at) {
        const bool isEscape = path[at] == '~' && at + 1 < end;
        if (isEscape) ++at;
        part += isEscape ? (path[at] == '1' ? '/' : '~') : path[at];
    }
    path.remove_prefix(std::min(end + 1, path.size()));
    return part;
}

std::optional<JsonValue> memberOf(const std::optional<JsonValue>& object, std::string_view name) {
    if (!object) return {};
    const auto member = object->find(name);
    if (!member) return {};
    return member->value;
}

std::string textOf(const std::optional<JsonValue>& value) {
    return std::string(value ? value->text() : std::string_view());
}

std::vector<std::uint8_t> valuesOf(const std::optional<JsonValue>& family) {
    std::vector<std::uint8_t> values;
    const auto add = [&values](const JsonValue& value) {
        if (const auto number = value.plainNumber(); number && *number <= UINT8_MAX)
            values.push_back(static_cast<std::uint8_t>(*number));
    };
    if (const auto dscp = memberOf(family, "dscp")) add(*dscp);
    if (const auto dscpSet = memberOf(family, "dscpSet"))
        for (const JsonValue& element : dscpSet->elements())
            add(element);
    return values;
}

/// Describes a term's contents. Distinguishes empty from absent parts.
std::string termText(std::string_view classifierType, const JsonValue& term) {
    std::string text;
    if (const auto conditions = memberOf(term, "conditions")) {
        text = matchText(classifierType, valuesOf(memberOf(conditions, "ipv4")),
                         valuesOf(memberOf(conditions, "ipv6")));
        if (text.empty()) text = "no dscp";
    }
    if (const auto actions = memberOf(term, "actions")) {
        const std::string group = textOf(memberOf(actions, "targetGroup"));
        if (!text.empty()) text += ", ";
        text += group.empty() ? "no group" : "group " + visibleName(group);
    }
    return text.empty() ? "empty" : text;
}

std::string counted(std::size_t terms) {
    if (terms == 0) return "no terms";
    return std::to_string(terms) + (terms == 1 ? " term" : " terms");
}

}  // namespace

bool ChangeText::placeOf(std::string_view path, Place& place) {
    if (!path.starts_with(kClassifiers)) return false;
    path.remove_prefix(kClassifiers.size());
    place.classifier = takePart(path);
    place.isTerms = takePart(path) == "terms";
    takePart(path);
    place.term = takePart(path);
    return true;
}

void ChangeText::stateIs(const JsonValue& state) {
    classifiers_.clear();
    const auto classifiers = memberOf(state, "classifier");
    if (!classifiers) return;
    for (const JsonMember& member : classifiers->members()) {
        Classifier& classifier = classifiers_[std::string(member.key)];
        classifier.type = QosAgent::textOf(memberOf(memberOf(member.value, "state"), "type"));
        const auto terms = memberOf(memberOf(member.value, "terms"), "term");
        if (!terms) continue;
        for (const JsonMember& term : terms->members())
            classifier.terms[std::string(term.key)] = termText(classifier.type, term.value);
    }
}

std::string ChangeText::textOf(std::string_view line, Time now) {
    const JsonResult json = parseJson(line);
    if (!std::holds_alternative<Json>(json)) return std::string(line);
    const JsonValue change = std::get<Json>(json).root();
    const auto update = memberOf(change, "update");
    const auto path = update ? update : memberOf(change, "delete");
    const auto value = memberOf(change, "value");
    Place place;
    if (!path || (update && !value) || !placeOf(path->text(), place)) return std::string(line);
    std::string text = timeText(now) + ' ' + visibleName(place.classifier);
    if (!place.term.empty()) text.append(" ").append(visibleName(place.term));
    return text + ": " + (update ? updated(place, *value) : removed(place));
}

std::string ChangeText::updated(const Place& place, const JsonValue& value) {
    Classifier& classifier = classifiers_[place.classifier];
    const bool isTerm = place.isTerms;
    std::string now =
        isTerm ? termText(classifier.type, value) : QosAgent::textOf(memberOf(value, "type"));
    std::string& held = isTerm ? classifier.terms[place.term] : classifier.type;
    std::string before = std::exchange(held, std::move(now));
    if (before.empty()) before = kAbsent;
    return before.append(kArrow).append(held);
}

std::string ChangeText::removed(const Place& place) {
    std::string before(kAbsent);
    const auto at = classifiers_.find(place.classifier);
    if (at == classifiers_.end()) return before.append(kArrow).append(kAbsent);
    Classifier& classifier = at->second;
    if (!place.isTerms) {
        before = classifier.type;
        if (!classifier.terms.empty()) before += " with " + counted(classifier.terms.size());
        classifiers_.erase(at);
    } else if (place.term.empty()) {
        before = counted(std::exchange(classifier.terms, {}).size());
    } else if (auto term = classifier.terms.extract(place.term)) {
        before = std::move(term.mapped());
    }
    return before.append(kArrow).append(kAbsent);
}

}  // namespace QosAgent
