#include "agent/output/Diagnostics.h"

#include <unistd.h>

#include "agent/json/Visible.h"
#include "agent/output/Journal.h"
#include "agent/output/Terminal.h"

namespace QosAgent {
namespace {

using Kind = Diagnostic::Kind;

std::string placeIn(std::string_view file, const TextPlace& place) {
    return std::string(file) + ':' + std::to_string(place.line) + ':' +
           std::to_string(place.column);
}

}  // namespace

std::string Diagnostic::line(bool hasColour) const {
    const bool isWarning = kind == Kind::warning;
    std::string line = painted(isWarning ? kBold : kBoldRed, visible(place) + ':', hasColour) + ' ';
    if (isWarning) line += painted(kBoldMagenta, "warning:", hasColour) + ' ';
    return line + visible(message);
}

Diagnostic refusal(std::string_view file, std::string_view message) {
    return {Kind::refusal, std::string(file), std::string(message)};
}

Diagnostic refusal(std::string_view file, const TextPlace& place, std::string_view message) {
    return refusal(placeIn(file, place), message);
}

Diagnostic refusal(std::string_view file, std::string_view text, const Fault& fault) {
    return refusal(file, placeOf(text, fault.offset), fault.message);
}

Diagnostic warning(std::string_view file, std::string_view message) {
    return {Kind::warning, std::string(file), std::string(message)};
}

Diagnostic warning(std::string_view file, const TextPlace& place, std::string_view message) {
    return warning(placeIn(file, place), message);
}

void report(const Diagnostic& diagnostic) {
    std::string line = diagnostic.line(terminalOn(STDERR_FILENO).hasColour);
    if (isJournal(STDERR_FILENO))
        line.insert(0, diagnostic.kind == Kind::warning ? kJournalWarning : kJournalError);
    Output(STDERR_FILENO).line(line);
}

bool reportFault(const Output& standardOutput) {
    if (standardOutput.fault().empty()) return false;
    report(refusal("standard output", standardOutput.fault()));
    return true;
}

}  // namespace QosAgent
