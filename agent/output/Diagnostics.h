#pragma once

#include <string>
#include <string_view>

#include "agent/json/JsonReader.h"
#include "agent/json/TextPlace.h"
#include "agent/output/Output.h"

/// Messages on standard error. `file` is the name that the command line gave.
namespace QosAgent {

/// One line on standard error: a refusal or a warning.
struct Diagnostic {
    enum class Kind { refusal, warning };

    Kind kind;
    std::string place;  ///< `FILE`, or `FILE:LINE:COLUMN`
    std::string message;

    /// Returns `PLACE: MESSAGE` or `PLACE: warning: MESSAGE`. Both parts pass through `visible`, so
    /// that the text is one line. The part before the message is coloured.
    std::string line(bool hasColour = false) const;
};

Diagnostic refusal(std::string_view file, std::string_view message);
Diagnostic refusal(std::string_view file, const TextPlace& place, std::string_view message);
/// Makes a refusal for a fault in a text.
Diagnostic refusal(std::string_view file, std::string_view text, const Fault& fault);
Diagnostic warning(std::string_view file, std::string_view message);
Diagnostic warning(std::string_view file, const TextPlace& place, std::string_view message);

/// Writes the line to standard error. Uses colour if that is a terminal with colour, and a severity
/// prefix if it is the journal.
void report(const Diagnostic& diagnostic);
/// Reports a failed write to standard output. Returns false if there was none.
bool reportFault(const Output& standardOutput);

}  // namespace QosAgent
