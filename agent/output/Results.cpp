#include "agent/output/Results.h"

#include "agent/database/Printer.h"
#include "agent/openconfig/StatePrinter.h"
#include "agent/output/Table.h"

namespace QosAgent {

std::string resultText(OutputFormat format, const Database& database, const Terminal& terminal) {
    const auto state = Vex::entityCast<QosOc::State::ClassifiersDir>(database.stateTree().root);
    if (format == OutputFormat::table) return stateTable(*state, terminal);
    std::string text;
    JsonWriter writer(text, JsonWriter::Style::indented);
    if (format == OutputFormat::entities)
        writeDatabase(writer, database);
    else
        writeOpenConfigState(writer, *state);
    return text;
}

}  // namespace QosAgent
