#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "agent/explain/Question.h"
#include "agent/options/OutputFormat.h"
#include "agent/options/ServiceOptions.h"
#include "agent/output/FollowOutput.h"

namespace QosAgent {

/// Levels 0 to `level` of the trace handles of that name; `*` names all.
struct TraceSetting {
    std::string handle;
    unsigned level;
    friend bool operator==(const TraceSetting&, const TraceSetting&) = default;
};

/// What the command line asks for.
struct Options {
    std::vector<std::string> documents;  ///< in the order given
    std::vector<std::string> streams;    ///< in the order given; `-` is standard input
    std::string pluginFile;
    std::string toggleFolder;  ///< empty: there is none
    OutputFormat output = OutputFormat::none;
    bool follows = false;
    FollowForm followForm = FollowForm::json;
    bool showsMachines = false;
    std::optional<Question> explained;  ///< what to explain at the end
    std::vector<TraceSetting> traces;   ///< in the order given
    std::string traceFile;              ///< empty: standard error
    bool keepsGoing = false;
    bool isStrict = false;  ///< what would be warned of is refused
    bool checksOnly = false;
    ServiceOptions service;
};

/// The command line was answered already, or refused: the program ends with this status.
struct ExitStatus {
    int status;
};

/// Reads the command line. Answers `--help` and `--version` on standard output; refuses with one
/// line on standard error.
std::variant<Options, ExitStatus> parseOptions(int argc, const char* const* argv);

}  // namespace QosAgent
