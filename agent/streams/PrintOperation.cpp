#include "agent/streams/PrintOperation.h"

#include <algorithm>
#include <iterator>

#include "agent/database/Printer.h"
#include "agent/database/Scalars.h"
#include "agent/json/Excerpt.h"
#include "agent/openconfig/StatePrinter.h"
#include "agent/output/Machines.h"
#include "agent/output/Table.h"

namespace QosAgent {
namespace {

constexpr std::string_view kExplain = "explain";
constexpr std::string_view kNames[] = {
    "state",    "database", "openconfig", "configuration",
    "machines", "table",    "entities",   "differences",
};

std::string unknownName(std::string_view name) {
    std::string names;
    for (const std::string_view known : kNames)
        names.append(names.empty() ? "" : ", ").append(known);
    return "cannot print " + excerpt(name) + ", expected one of " + names;
}

}  // namespace

PrintOperation::PrintOperation(const Database& database, const Configuration& configuration,
                               const PluginHost& host)
    : database_(database), configuration_(configuration), host_(host), explainer_(database) {}

std::variant<std::string, Fault> PrintOperation::print(const JsonValue& what) {
    if (what.is(JsonKind::object)) return explanation(what);
    if (!what.is(JsonKind::string))
        return Fault{what.offset(), unexpected("a string", what.kind())};
    if (std::find(std::begin(kNames), std::end(kNames), what.text()) == std::end(kNames))
        return Fault{what.offset(), unknownName(what.text())};
    return textOf(what.text());
}

std::variant<std::string, Fault> PrintOperation::explanation(const JsonValue& what) {
    for (const JsonMember& member : what.members())
        if (member.key != kExplain)
            return Fault{member.keyOffset,
                         "cannot print " + excerpt(member.key) + ", expected " + excerpt(kExplain)};
    const auto asked = what.find(kExplain);
    if (!asked) return Fault{what.offset(), "nothing to print, expected " + excerpt(kExplain)};
    const auto question = questionFrom(asked->value);
    if (const auto* fault = std::get_if<Fault>(&question)) return *fault;
    std::string text;
    JsonWriter writer(text);
    writeExplanation(writer, explainer_.explain(std::get<Question>(question)));
    return text;
}

std::string PrintOperation::textOf(std::string_view what) {
    if (what == "table")
        return stateTable(
            *Vex::entityCast<QosOc::State::ClassifiersDir>(database_.stateTree().root));
    std::string text;
    const bool isIndented = what == "entities";
    JsonWriter writer(text, isIndented ? JsonWriter::Style::indented : JsonWriter::Style::compact);
    if (isIndented)
        writeDatabase(writer, database_);
    else
        writeDocument(writer, what);
    return text;
}

void PrintOperation::writeDocument(JsonWriter& writer, std::string_view what) {
    const Subtree& state = database_.stateTree();
    if (what == "state")
        writeEntity(writer, *state.root);
    else if (what == "database")
        writeDatabase(writer, database_);
    else if (what == "openconfig")
        writeOpenConfigState(writer, *Vex::entityCast<QosOc::State::ClassifiersDir>(state.root));
    else if (what == "configuration")
        configuration_.tree().write(writer);
    else if (what == "differences")
        explainer_.writeDifferences(writer);
    else
        writeMachines(writer, database_, host_.mounters());
}

}  // namespace QosAgent
