#include "agent/openconfig/StatePrinter.h"

#include "agent/openconfig/SortedState.h"

namespace QosAgent {
namespace {

using QosOc::Config::TermConditions;
using QosOc::Config::TermConditionsIpConfig;

void writeFamily(JsonWriter& writer, std::string_view name, const TermConditionsIpConfig& family) {
    if (family.empty()) return;
    writer.key(name).beginObject().key("state").beginObject();
    if (family.dscp) writer.key("dscp").number(*family.dscp);
    if (!family.dscpSet.empty()) {
        writer.key("dscp-set").beginArray();
        for (const std::uint8_t dscp : family.dscpSet)
            writer.number(dscp);
        writer.endArray();
    }
    writer.endObject().endObject();
}

void writeConditions(JsonWriter& writer, const TermConditions& conditions) {
    if (conditions.ipv4.empty() && conditions.ipv6.empty()) return;
    writer.key("conditions").beginObject();
    writeFamily(writer, "ipv4", conditions.ipv4);
    writeFamily(writer, "ipv6", conditions.ipv6);
    writer.endObject();
}

void writeActions(JsonWriter& writer, const Orin::String& targetGroup) {
    if (targetGroup.empty()) return;
    writer.key("actions").beginObject().key("state").beginObject();
    writer.key("target-group").text(targetGroup).endObject().endObject();
}

void writeTerm(JsonWriter& writer, const QosOc::State::Term& term) {
    writer.beginObject().key("id").text(term.id);
    writer.key("state").beginObject().key("id").text(term.stateId).endObject();
    if (term.conditions) writeConditions(writer, *term.conditions);
    if (term.actions) writeActions(writer, term.actions->targetGroup);
    writer.endObject();
}

void writeTerms(JsonWriter& writer, const QosOc::State::Terms& terms) {
    if (terms.term().empty()) return;
    writer.key("terms").beginObject().key("term").beginArray();
    for (const auto* member : sortedByKey(terms.term()))
        writeTerm(writer, member->value);
    writer.endArray().endObject();
}

void writeClassifier(JsonWriter& writer, const QosOc::State::Classifier& classifier) {
    const QosOc::State::ClassifierState& state = classifier.state();
    writer.beginObject().key("name").text(classifier.name());
    writer.key("state").beginObject().key("name").text(state.name);
    writer.key("type").text(Vex::enumText(state.type)).endObject();
    if (classifier.terms() != nullptr) writeTerms(writer, *classifier.terms());
    writer.endObject();
}

}  // namespace

void writeOpenConfigState(JsonWriter& writer, const QosOc::State::ClassifiersDir& state) {
    writer.beginObject();
    if (!state.classifier().empty()) {
        writer.key("openconfig-qos:qos").beginObject().key("classifiers").beginObject();
        writer.key("classifier").beginArray();
        for (const auto* member : sortedByKey(state.classifier()))
            writeClassifier(writer, *member->value);
        writer.endArray().endObject().endObject();
    }
    writer.endObject();
}

}  // namespace QosAgent
