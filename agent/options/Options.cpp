#include "agent/options/Options.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <map>
#include <optional>

#include "agent/ExitCodes.h"
#include "agent/host/InstalledFiles.h"
#include "agent/output/Diagnostics.h"

#ifndef QOS_AGENT_VERSION
#define QOS_AGENT_VERSION "unknown"
#endif

namespace QosAgent {
namespace {

constexpr const char* kProgram = "qos-agent";

const std::map<std::string, OutputFormat> kFormats{
    {"table", OutputFormat::table},
    {"openconfig", OutputFormat::openconfig},
    {"entities", OutputFormat::entities},
    {"none", OutputFormat::none},
};

/// What the library collects; texts are checked by its validators.
struct Given {
    std::vector<std::string> inputs;
    std::string plugin;
    std::string toggleFolder;
    std::string format;
    std::vector<std::string> traces;
    std::string traceFile;
};

bool isStream(const std::string& input) {
    return input == "-" || input.ends_with(".jsonl");
}

std::string inputFault(const std::string& input) {
    if (isStream(input) || input.ends_with(".json")) return {};
    return "an input ends in .json or .jsonl, or is -, found " + input;
}

std::optional<TraceSetting> traceFrom(const std::string& text) {
    const std::size_t slash = text.rfind('/');
    if (slash == std::string::npos || slash == 0 || text.size() != slash + 2) return {};
    const char level = text.back();
    if (level < '0' || level > '9') return {};
    return TraceSetting{text.substr(0, slash), static_cast<unsigned>(level - '0')};
}

std::string traceFault(const std::string& text) {
    return traceFrom(text) ? "" : "expected HANDLE/LEVEL with a level from 0 to 9, found " + text;
}

std::string formatFault(const std::string& text) {
    return kFormats.contains(text) ? ""
                                   : "expected table, openconfig, entities or none, found " + text;
}

CLI::Validator check(std::string (*fault)(const std::string&)) {
    return CLI::Validator([fault](std::string& text) { return fault(text); }, "");
}

void describe(CLI::App& app, Given& given, Options& options) {
    app.set_version_flag("--version", QOS_AGENT_VERSION);
    app.add_option("INPUT", given.inputs,
                   "A document (.json), or a change stream (.jsonl, - for standard input)")
        ->check(check(inputFault));
    app.add_option("--plugin", given.plugin, "The plug-in's shared library")->type_name("FILE");
    app.add_option("--toggle-dir", given.toggleFolder, "The folder that holds QosOpenConfig.json")
        ->type_name("DIR");
    app.add_option("--output", given.format,
                   "What to print at the end: table, openconfig, entities or none")
        ->type_name("FORMAT")
        ->check(check(formatFault));
    app.add_flag("--follow", options.follows, "Print each published change of the state tree");
    app.add_flag("--machines", options.showsMachines, "Print the live machine tree at the end");
    app.add_option("--trace", given.traces,
                   "Enable trace levels 0 to LEVEL of a handle; * names all; may be given again")
        ->type_name("HANDLE/LEVEL")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->check(check(traceFault));
    app.add_option("--trace-file", given.traceFile, "Where trace lines go")->type_name("FILE");
    app.add_flag("--keep-going", options.keepsGoing,
                 "Report a bad change-stream line and go on with the next");
}

OutputFormat formatFrom(const std::string& text) {
    if (!text.empty()) return kFormats.at(text);
    return ::isatty(STDOUT_FILENO) != 0 ? OutputFormat::table : OutputFormat::openconfig;
}

void complete(Options& options, const Given& given) {
    for (const std::string& input : given.inputs)
        (isStream(input) ? options.streams : options.documents).push_back(input);
    for (const std::string& trace : given.traces)
        options.traces.push_back(*traceFrom(trace));
    options.pluginFile = given.plugin.empty() ? defaultPluginFile() : given.plugin;
    options.toggleFolder = given.toggleFolder.empty() ? defaultToggleFolder() : given.toggleFolder;
    options.output = formatFrom(given.format);
    options.traceFile = given.traceFile;
}

}  // namespace

std::variant<Options, ExitStatus> parseOptions(int argc, const char* const* argv) {
    CLI::App app("Hosts the QoS state database and the plug-in that publishes classifier state.",
                 kProgram);
    Given given;
    Options options;
    describe(app, given, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& answer) {
        if (answer.get_exit_code() == 0) return ExitStatus{app.exit(answer)};
        report(refusal(kProgram, answer.what()));
        return ExitStatus{kUnusable};
    }
    complete(options, given);
    return options;
}

}  // namespace QosAgent
