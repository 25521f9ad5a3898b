#pragma once

#include <string>
#include <string_view>

#include "agent/json/JsonReader.h"
#include "agent/json/TextPlace.h"
#include "agent/output/Output.h"

/// What is said on standard error. `file` is as it was named on the command line.
namespace QosAgent {

/// One line on standard error: why something was refused, or what was passed over.
struct Diagnostic {
    enum class Kind { refusal, warning };

    Kind kind;
    std::string place;  ///< `FILE`, or `FILE:LINE:COLUMN`
    std::string message;

    /// `PLACE: MESSAGE` or `PLACE: warning: MESSAGE`, both `visible`, so that it is one line
    /// whatever they hold. Colour is for what stands before the message.
    std::string line(bool hasColour = false) const;
};

Diagnostic refusal(std::string_view file, std::string_view message);
Diagnostic refusal(std::string_view file, const TextPlace& place, std::string_view message);
/// The same for a fault in a text.
Diagnostic refusal(std::string_view file, std::string_view text, const Fault& fault);
Diagnostic warning(std::string_view file, std::string_view message);
Diagnostic warning(std::string_view file, const TextPlace& place, std::string_view message);

/// Writes the line to standard error: in colour if that is a terminal that has it, with its
/// severity before it if that is the journal.
void report(const Diagnostic& diagnostic);
/// Reports that a write to standard output failed; false if none did.
bool reportFault(const Output& standardOutput);

}  // namespace QosAgent
