#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "agent/explain/Question.h"
#include "agent/options/ServiceOptions.h"
#include "agent/output/FollowOutput.h"
#include "agent/output/OutputFormat.h"

namespace QosAgent {

/// Enables levels 0 to `level` of the trace handles of this name; `*` means all.
struct TraceSetting {
    std::string handle;
    unsigned level;
    friend bool operator==(const TraceSetting&, const TraceSetting&) = default;
};

/// The settings of the command line.
struct Options {
    std::vector<std::string> documents;  ///< in the order given
    std::vector<std::string> streams;    ///< in the order given; `-` is standard input
    std::string pluginFile;
    std::string toggleFolder;  ///< empty: none
    OutputFormat output = OutputFormat::none;
    bool follows = false;
    FollowForm followForm = FollowForm::json;
    bool showsMachines = false;
    std::optional<Question> explained;  ///< what to explain at the end
    std::vector<TraceSetting> traces;   ///< in the order given
    std::string traceFile;              ///< empty: standard error
    bool keepsGoing = false;
    bool isStrict = false;  ///< refuse instead of warning
    bool checksOnly = false;
    ServiceOptions service;
};

/// The status with which the program must end, because the command line was answered or refused.
struct ExitStatus {
    int status;
};

/// Parses the command line. Answers `--help` and `--version` on standard output. Refuses with one
/// line on standard error.
std::variant<Options, ExitStatus> parseOptions(int argc, const char* const* argv);

}  // namespace QosAgent
