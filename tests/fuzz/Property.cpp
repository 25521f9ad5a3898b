#include "tests/fuzz/Property.h"

#include <algorithm>

#include "agent/output/Diagnostics.h"

namespace QosAgent {
namespace {

bool isControl(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
}

std::string printed(const TextDatabase& db, JsonWriter::Style style) {
    std::string text;
    JsonWriter writer(text, style);
    writeDatabase(writer, db.database);
    return text;
}

}  // namespace

void require(bool holds, const std::string& words) {
    if (!holds) throw BrokenProperty(words);
}

void requireLine(std::string_view line) {
    require(std::none_of(line.begin(), line.end(), isControl),
            "a line has a control character: " + std::string(line));
}

void requireFault(const Fault& fault, std::string_view text) {
    require(fault.offset <= text.size(), "a place behind the text");
    require(!fault.message.empty(), "a fault without words");
    require(fault.message.size() < 1000, "a fault of many words: " + fault.message);
    requireLine(fault.message);
    requireLine(refusal("file", text, fault).line());
}

bool requireAllOrNothing(const TextDatabase& db, std::string_view text, const Load& load) {
    const std::string before = db.all();
    const auto fault = load(text);
    if (!fault) return true;
    requireFault(*fault, text);
    require(db.all() == before, "refused, and changed all the same: " + fault->message);
    return false;
}

void requireReadsBack(const TextDatabase& db) {
    for (const auto style : {JsonWriter::Style::compact, JsonWriter::Style::indented}) {
        const std::string text = printed(db, style);
        TextDatabase again;
        const std::string fault = again.load(text);
        require(fault.empty(), "what was printed is refused: " + fault + '\n' + text);
        require(printed(again, style) == text, "what was printed reads as something else: " + text);
    }
}

}  // namespace QosAgent
