#include "agent/explain/Differences.h"

#include <algorithm>

#include "agent/explain/Explainer.h"
#include "agent/explain/Finding.h"

namespace QosAgent {
namespace {

using Orin::String;
using QosOc::Classifier::Type;
using QosOc::Config::Term;

/// True if the state may not have what is configured. Costs less than the evidence of a term.
bool mayDiffer(const Term& configured, const Term* state, Type family) {
    return state == nullptr || targetGroup(&configured) != targetGroup(state) ||
           (configured.conditions != state->conditions &&
            dscpValues(&configured, family) != dscpValues(state, family));
}

/// The same of a classifier and its terms.
bool mayDiffer(const QosOc::Config::Classifier& configured, const QosOc::State::Classifier* state) {
    const Type family = configured.config().type.value_or(Type::IPV4);
    if (state == nullptr || state->state().type != family) return true;
    if (!configured.terms()) return false;
    auto* published = state->terms();
    for (const auto& member : configured.terms()->term())
        if (mayDiffer(member.value, published == nullptr ? nullptr : published->term(member.key),
                      family))
            return true;
    return false;
}

bool isDscpDifferent(const TermEvidence& term) {
    const Type family = term.classifier->configuredFamily();
    const DscpValues configured = dscpValues(term.configured, family);
    return !configured.empty() && configured != dscpValues(term.state, family);
}

/// What is not configured is a difference only where a policy map decides it.
bool isTargetGroupDifferent(const TermEvidence& term) {
    const String& configured = targetGroup(term.configured);
    return configured.empty() ? isDecidedByPolicyMap(term) : configured != targetGroup(term.state);
}

bool isDifferent(const TermEvidence& term) {
    return term.state == nullptr || isDscpDifferent(term) || isTargetGroupDifferent(term);
}

/// The configured terms that differ, ascending by id.
std::vector<TermEvidence> differingTerms(const ClassifierEvidence& classifier,
                                         const EvidenceReader& reader) {
    std::vector<TermEvidence> terms;
    if (!classifier.configured->terms()) return terms;
    const Type family = classifier.configuredFamily();
    auto* state = classifier.state == nullptr ? nullptr : classifier.state->terms();
    for (const auto& member : classifier.configured->terms()->term()) {
        const Term* published = state == nullptr ? nullptr : state->term(member.key);
        if (!mayDiffer(member.value, published, family)) continue;
        TermEvidence term = reader.term(classifier, member.key);
        if (isDifferent(term)) terms.push_back(std::move(term));
    }
    std::sort(terms.begin(), terms.end(),
              [](const TermEvidence& a, const TermEvidence& b) { return a.id < b.id; });
    return terms;
}

void writeType(JsonWriter& writer, const ClassifierEvidence& classifier) {
    const auto& configured = classifier.configured->config().type;
    if (classifier.state == nullptr && !configured) return;
    writer.key("type").beginObject();
    if (configured) writer.key("config").text(Vex::enumText(*configured));
    if (classifier.state != nullptr)
        writer.key("state").text(Vex::enumText(classifier.state->state().type));
    writer.endObject();
}

void writeSide(JsonWriter& writer, std::string_view side, const DscpValues& values) {
    if (values.empty()) return;
    writer.key(side).beginArray();
    for (const std::uint8_t value : values)
        writer.number(value);
    writer.endArray();
}

void writeSide(JsonWriter& writer, std::string_view side, const String& name) {
    if (!name.empty()) writer.key(side).text(name);
}

template <class Value>
void writeSides(JsonWriter& writer, std::string_view name, const Value& configured,
                const Value& state) {
    writer.key(name).beginObject();
    writeSide(writer, "config", configured);
    writeSide(writer, "state", state);
    writer.endObject();
}

void writeTerm(JsonWriter& writer, const TermEvidence& term) {
    const Type family = term.classifier->configuredFamily();
    writer.key(term.id).beginObject();
    if (isDscpDifferent(term))
        writeSides(writer, "dscp", dscpValues(term.configured, family),
                   dscpValues(term.state, family));
    if (isTargetGroupDifferent(term))
        writeSides(writer, "target-group", targetGroup(term.configured), targetGroup(term.state));
    writeFindings(writer, findingsOf(term));
    writer.endObject();
}

/// Writes nothing for a classifier that is in the state as configured.
void writeClassifier(JsonWriter& writer, const ClassifierEvidence& classifier,
                     const EvidenceReader& reader) {
    // For a configured classifier each finding is a difference, and each difference a finding.
    const FindingRows findings = findingsOf(classifier);
    const std::vector<TermEvidence> terms = differingTerms(classifier, reader);
    if (findings.empty() && terms.empty()) return;
    writer.key(classifier.name).beginObject();
    if (!findings.empty()) writeType(writer, classifier);
    writeFindings(writer, findings);
    if (!terms.empty()) {
        writer.key("terms").beginObject();
        for (const TermEvidence& term : terms)
            writeTerm(writer, term);
        writer.endObject();
    }
    writer.endObject();
}

/// Configured classifiers that may differ, themselves or in their terms; ascending. Only these are
/// sorted, so that the usual case, in which nothing differs, is linear.
std::vector<String> namesThatMayDiffer(const EvidenceReader& reader) {
    std::vector<String> names;
    for (const auto& member : reader.configured().classifier())
        if (mayDiffer(*member.value, reader.state().classifier(member.key)))
            names.push_back(member.key);
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace

void writeDifferences(JsonWriter& writer, const EvidenceReader& reader) {
    writer.beginObject();
    for (const String& name : namesThatMayDiffer(reader))
        writeClassifier(writer, reader.classifier(name), reader);
    writer.endObject();
}

}  // namespace QosAgent
