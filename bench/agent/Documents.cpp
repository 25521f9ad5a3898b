#include "bench/agent/Documents.h"

#include <cstdlib>
#include <variant>

#include "agent/database/Document.h"
#include "agent/database/Printer.h"
#include "agent/json/JsonReader.h"
#include "agent/openconfig/Configuration.h"
#include "agent/openconfig/StatePrinter.h"
#include "agent/output/Table.h"
#include "platform/Vex/Entity.h"

namespace QosBench {
namespace {

using QosAgent::JsonWriter;

constexpr std::size_t kTermsEach = 8;
constexpr std::size_t kDscpsEach = 8;

std::string numbered(std::string_view what, std::size_t number) {
    return std::string(what) + std::to_string(number);
}

/// An entry of a list, and its `config` with the same key; both left open.
void beginEntry(JsonWriter& writer, std::string_view key, const std::string& value) {
    writer.beginObject().key(key).text(value).key("config").beginObject().key(key).text(value);
}

void writeGroups(JsonWriter& writer) {
    writer.key("forwarding-groups").beginObject().key("forwarding-group").beginArray();
    for (std::size_t group = 0; group != kTermsEach; ++group) {
        beginEntry(writer, "name", numbered("group-", group));
        writer.endObject().endObject();
    }
    writer.endArray().endObject();
}

void writeTerm(JsonWriter& writer, std::size_t number) {
    beginEntry(writer, "id", numbered("term-", number));
    writer.endObject().key("conditions").beginObject().key("ipv4").beginObject();
    writer.key("config").beginObject().key("dscp-set").beginArray();
    for (std::size_t dscp = 0; dscp != kDscpsEach; ++dscp)
        writer.number(number * kDscpsEach + dscp);
    writer.endArray().endObject().endObject().endObject();
    writer.key("actions").beginObject().key("config").beginObject().key("target-group");
    writer.text(numbered("group-", number)).endObject().endObject().endObject();
}

void writeClassifier(JsonWriter& writer, std::size_t number) {
    beginEntry(writer, "name", numbered("classifier-", number));
    writer.key("type").text("IPV4").endObject();
    writer.key("terms").beginObject().key("term").beginArray();
    for (std::size_t term = 0; term != kTermsEach; ++term)
        writeTerm(writer, term);
    writer.endArray().endObject().endObject();
}

void writeInterface(JsonWriter& writer, std::size_t number) {
    beginEntry(writer, "interface-id", numbered("Ethernet", number));
    writer.endObject().key("input").beginObject().key("classifiers").beginObject();
    writer.key("classifier").beginArray().beginObject().key("type").text("IPV4");
    writer.key("config").beginObject().key("type").text("IPV4");
    writer.key("name").text(numbered("classifier-", number));
    writer.endObject().endObject().endArray().endObject().endObject().endObject();
}

std::string configurationOf(std::size_t classifiers) {
    std::string text;
    JsonWriter writer(text);
    writer.beginObject().key("openconfig-qos:qos").beginObject();
    writeGroups(writer);
    writer.key("classifiers").beginObject().key("classifier").beginArray();
    for (std::size_t number = 0; number != classifiers; ++number)
        writeClassifier(writer, number);
    writer.endArray().endObject();
    writer.key("interfaces").beginObject().key("interface").beginArray();
    for (std::size_t number = 0; number != classifiers; ++number)
        writeInterface(writer, number);
    writer.endArray().endObject().endObject().endObject();
    return text;
}

QosAgent::Json parsed(const std::string& text) {
    QosAgent::JsonResult json = QosAgent::parseJson(text);
    if (!std::holds_alternative<QosAgent::Json>(json)) std::abort();
    return std::get<QosAgent::Json>(std::move(json));
}

void configure(QosAgent::Configuration& configuration, const std::string& text) {
    QosAgent::Json json = parsed(text);
    const QosAgent::JsonValue root = json.root();
    const auto result = configuration.apply(std::move(json), root);
    if (std::holds_alternative<QosAgent::Fault>(result)) std::abort();
}

void translateInto(QosAgent::Database& database, const std::string& configuration) {
    QosAgent::Configuration written(database);
    configure(written, configuration);
}

template <class Root>
Orin::Ptr<Root> rootAt(const QosAgent::Database& database, std::string_view path) {
    return Vex::entityCast<Root>(database.subtreeAt(path)->root);
}

}  // namespace

Documents::Documents(std::size_t terms)
    : terms_(terms / kTermsEach * kTermsEach), configuration_(configurationOf(terms / kTermsEach)) {
    configure(edited_, configuration_);
    JsonWriter writer(databaseText_);
    QosAgent::writeDatabase(writer, printed_);
    state_ = rootAt<QosOc::State::ClassifiersDir>(printed_, "qos/openconfig/state/classifiers");
    root_ = QosOc::ClassifierStateSm::ClassifierStateSmIs(
        rootAt<const Qos::Status>(printed_, "qos/status"),
        rootAt<const Acl::Input::Config>(printed_, "acl/config/cli"),
        rootAt<const Qos::Input::Config>(printed_, "qos/input/config/cli"),
        rootAt<const QosOc::Config::ClassifiersDir>(printed_, "qos/openconfig/config/classifiers"),
        state_);
}

void Documents::translate() {
    database_ = std::make_unique<QosAgent::Database>();
    translateInto(*database_, configuration_);
}

void Documents::edit(std::string_view first, std::string_view second) {
    isEdited_ = !isEdited_;
    std::string line = R"({"configure":[)";
    line.append(isEdited_ ? first : second).append("]}");
    const QosAgent::Json json = parsed(line);
    const auto edits = json.root().find("configure");
    const auto applied = edited_.configure(edits->value);
    if (std::holds_alternative<QosAgent::Configuration::Refusal>(applied)) std::abort();
}

void Documents::editTerm() {
    edit(R"({"replace":"/qos/classifiers/classifier[name=classifier-7]/terms/term[id=term-3])"
         R"(/conditions/ipv4/config/dscp-set","value":[1]})",
         R"({"replace":"/qos/classifiers/classifier[name=classifier-7]/terms/term[id=term-3])"
         R"(/conditions/ipv4/config/dscp-set","value":[2]})");
}

void Documents::editGroup() {
    edit(R"({"update":"/qos/forwarding-groups/forwarding-group[name=more]/config",)"
         R"("value":{"name":"more"}})",
         R"({"delete":"/qos/forwarding-groups/forwarding-group[name=more]"})");
}

void Documents::editTerms() {
    static const std::string kTerms = [] {
        std::string text;
        JsonWriter writer(text);
        writer.beginObject().key("term").beginArray();
        for (std::size_t term = 0; term != kTermsEach; ++term)
            writeTerm(writer, term);
        writer.endArray().endObject();
        return R"({"replace":"/qos/classifiers/classifier[name=classifier-7]/terms","value":)" +
               text + '}';
    }();
    edit(R"({"delete":"/qos/classifiers/classifier[name=classifier-7]/terms"})", kTerms);
}

void Documents::editWhatIsNotCarried() {
    edit(R"({"update":"/qos/scheduler-policies","value":{"x":1}})",
         R"({"delete":"/qos/scheduler-policies"})");
}

void Documents::load() {
    database_ = std::make_unique<QosAgent::Database>();
    const QosAgent::Json json = parsed(databaseText_);
    if (QosAgent::checkDocument(*database_, json.root())) std::abort();
    QosAgent::mergeDocument(*database_, json.root());
}

void Documents::printDatabase() {
    out_.clear();
    JsonWriter writer(out_);
    QosAgent::writeDatabase(writer, printed_);
}

void Documents::printOpenConfig() {
    out_.clear();
    JsonWriter writer(out_);
    QosAgent::writeOpenConfigState(writer, *state_);
}

void Documents::printTable() {
    out_ = QosAgent::stateTable(*state_);
}

void Documents::explain(const QosAgent::Question& question) {
    out_.clear();
    JsonWriter writer(out_);
    QosAgent::writeExplanation(writer, explainer_.explain(question));
}

void Documents::printDifferences() {
    out_.clear();
    JsonWriter writer(out_);
    explainer_.writeDifferences(writer);
    if (out_ != "{}") std::abort();
}

}  // namespace QosBench
