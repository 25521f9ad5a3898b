#include "agent/database/Printer.h"
#include "agent/explain/Explainer.h"
#include "platform/Qos/MapType.h"

namespace QosAgent {
namespace {

/// Writes the member `name` with a value for each thing; nothing where there are none.
template <class Things, class Write>
void writeList(JsonWriter& writer, std::string_view name, const Things& things, Write write) {
    if (things.empty()) return;
    writer.key(name).beginArray();
    for (const auto& thing : things)
        write(thing);
    writer.endArray();
}

void writeState(JsonWriter& writer, const QosOc::State::Classifier& classifier,
                const Orin::String& id) {
    const Vex::TypedNode& terms = *classifier.terms();
    const auto& attribute = *Vex::attributeWithId(terms.typeData(), QosOc::State::Terms::kTerm.id);
    writer.key("state");
    writeValue(writer, *attribute.type, attribute.collection->get(&terms, Vex::Value(id)));
}

void writeClassMap(JsonWriter& writer, const TermEvidence& term) {
    if (term.classMap == nullptr) return;
    writer.key("classMaps").beginArray().beginObject();
    writer.key("type").text(Vex::enumText(Qos::MapType::mapQos)).key("name").text(term.objName);
    const auto& match =
        *Vex::attributeWithId(term.classMap->typeData(), Qos::ClassMapStatus::kMatch.id);
    if (!term.classMap->match().empty()) {
        writer.key(match.name).beginObject();
        for (const auto& [option, matched] : sortedMembers(*term.classMap, match)) {
            writer.key(keyText(*match.collection->key, option));
            writeValue(writer, *match.type, matched);
        }
        writer.endObject();
    }
    writer.endObject().endArray();
}

void writeRule(JsonWriter& writer, const RuleEvidence& rule) {
    writer.beginObject().key("sequence").number(rule.sequence);
    writer.key("rule").text(std::to_string(rule.id.value));
    if (rule.dscp)
        writer.key("dscp").number(*rule.dscp);
    else
        writer.key("ignored").text(rule.ignored);
    writer.endObject();
}

void writeAccessList(JsonWriter& writer, const AccessListEvidence& list, const Orin::String& name) {
    writer.beginObject().key("type").text(Vex::enumText(list.type)).key("name").text(name);
    writeList(writer, "rules", list.rules, [&](const auto& rule) { writeRule(writer, rule); });
    writer.endObject();
}

void writePolicyMap(JsonWriter& writer, const PolicyMapEvidence& map) {
    writer.beginObject().key("name").text(map.policyMap->pmapName());
    writer.key("version").number(map.policyMap->version());
    if (map.trafficClass) writer.key("trafficClass").number(*map.trafficClass);
    if (!map.targetGroup.empty()) writer.key("targetGroup").text(map.targetGroup);
    writer.endObject();
}

void writeConfigured(JsonWriter& writer, const QosOc::Config::Term* configured) {
    if (configured == nullptr) return;
    writer.key("configured").beginObject();
    const Orin::String& group = targetGroup(configured);
    if (!group.empty()) writer.key("targetGroup").text(group);
    writer.endObject();
}

void writeTerm(JsonWriter& writer, const TermExplanation& explanation) {
    const TermEvidence& term = explanation.evidence;
    writer.key(term.id).beginObject();
    if (term.state != nullptr) writeState(writer, *term.classifier->state, term.id);
    writeClassMap(writer, term);
    writeList(writer, "accessLists", term.accessLists,
              [&](const auto& list) { writeAccessList(writer, list, term.objName); });
    writeList(writer, "policyMaps", term.policyMaps,
              [&](const auto& map) { writePolicyMap(writer, map); });
    writeConfigured(writer, term.configured);
    writeFindings(writer, explanation.findings);
    writer.endObject();
}

}  // namespace

void writeFindings(JsonWriter& writer, const FindingRows& findings) {
    writeList(writer, "findings", findings,
              [&](const Finding* finding) { writer.text(finding->code); });
}

void writeExplanation(JsonWriter& writer, const Explanation& explanation) {
    const ClassifierEvidence& classifier = *explanation.evidence;
    writer.beginObject().key("classifier").text(classifier.name);
    if (classifier.state != nullptr && explanation.isKnown())
        writer.key("type").text(Vex::enumText(classifier.state->state().type));
    if (!explanation.terms.empty()) {
        writer.key("terms").beginObject();
        for (const TermExplanation& term : explanation.terms)
            writeTerm(writer, term);
        writer.endObject();
    }
    writeFindings(writer, explanation.findings);
    writer.endObject();
}

}  // namespace QosAgent
