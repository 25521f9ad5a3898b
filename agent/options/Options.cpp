#include "agent/options/Options.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <system_error>

#include "agent/host/InstalledFiles.h"
#include "agent/json/Excerpt.h"
#include "agent/options/ExitCodes.h"
#include "agent/options/ParseMessage.h"
#include "agent/options/ServiceArguments.h"
#include "agent/output/Diagnostics.h"
#include "agent/output/Output.h"

#ifndef QOS_AGENT_VERSION
#define QOS_AGENT_VERSION "unknown"
#endif

namespace QosAgent {
namespace {

constexpr const char* kProgram = "qos-agent";
constexpr const char* kVersion = "qos-agent " QOS_AGENT_VERSION;

/// The library prints this after the options.
constexpr const char* kHelpEnd =
    R"(Ctrl-C or SIGTERM ends the change streams; the program then prints its output.
A second one, or one while documents are loaded, ends the program at once.

Exit status:
  0  all input was applied
  1  a line of a change stream was refused, under --keep-going
  2  the command line, a document, a stream or the plug-in could not be used

Examples:
  Show the state that the plug-in derives from an OpenConfig configuration:
    qos-agent --output table configuration.json
  Apply changes to it, and see each change of the state as it happens:
    qos-agent --follow=text --output none configuration.json changes.jsonl
  Follow another program's changes, and report the lines that it gets wrong:
    device-changes | qos-agent --follow --keep-going --output none -
  Find out why a term does not have what is configured:
    qos-agent --output none --explain edge/voice configuration.json
  Trace the plug-in, and show its machines:
    qos-agent --trace '*/8' --machines --output none configuration.json)";

const std::map<std::string, OutputFormat> kFormats{
    {"table", OutputFormat::table},
    {"openconfig", OutputFormat::openconfig},
    {"entities", OutputFormat::entities},
    {"none", OutputFormat::none},
};

/// The library's value of `--follow` without a form. No user types it.
constexpr const char* kFormUnsaid = "\x01";

const std::map<std::string, FollowForm> kFollowForms{
    {"json", FollowForm::json},
    {"text", FollowForm::text},
};

/// Shows an option whose value may be left out as `--follow[=FORM]`.
class HelpFormatter : public CLI::Formatter {
public:
    std::string make_option_name(const CLI::Option* option, bool isPositional) const override {
        std::string name = CLI::Formatter::make_option_name(option, isPositional);
        const std::string unsaid = std::string("{") + kFormUnsaid + '}';
        const std::size_t at = name.find(unsaid);
        return at == std::string::npos ? name : name.replace(at, unsaid.size(), "[=FORM]");
    }
};

/// The values that the library collects. Its validators check the texts.
struct Given {
    std::vector<std::string> inputs;
    std::string plugin;
    std::string toggleFolder;
    std::string format;
    std::string followForm;
    std::vector<std::string> traces;
    std::string traceFile;
    std::string explained;
};

bool isStream(const std::string& input) {
    return input == "-" || input.ends_with(".jsonl");
}

/// Returns true for the files that are documents although their names do not end in `.json`:
/// standard input, and the output of a command in `<(COMMAND)`.
bool isDescriptor(const std::string& input) {
    return input == "/dev/stdin" || input.starts_with("/dev/fd/");
}

std::string inputFault(const std::string& input) {
    if (isStream(input) || isDescriptor(input) || input.ends_with(".json")) return {};
    return "an input ends in .json or .jsonl, or is -, found " + excerpt(input);
}

std::optional<TraceSetting> traceFrom(const std::string& text) {
    const std::size_t slash = text.rfind('/');
    if (slash == std::string::npos || slash == 0 || text.size() != slash + 2) return {};
    const char level = text.back();
    if (level < '0' || level > '9') return {};
    return TraceSetting{text.substr(0, slash), static_cast<unsigned>(level - '0')};
}

std::string traceFault(const std::string& text) {
    return traceFrom(text)
               ? ""
               : "expected HANDLE/LEVEL with a level from 0 to 9, found " + excerpt(text);
}

std::string formatFault(const std::string& text) {
    if (kFormats.contains(text)) return {};
    return "expected table, openconfig, entities or none, found " + excerpt(text);
}

std::string followFormFault(const std::string& text) {
    if (text == kFormUnsaid || kFollowForms.contains(text)) return {};
    return "expected json or text, found " + excerpt(text);
}

/// The installed folder may be missing. A folder that the user names must exist.
std::string folderFault(const std::string& name) {
    std::error_code error;
    const bool isFolder = std::filesystem::is_directory(name, error);
    if (error) return excerpt(name) + ": " + error.message();
    return isFolder ? "" : excerpt(name) + " is not a directory";
}

std::string questionFault(const std::string& text) {
    const auto question = questionFrom(text);
    const auto* fault = std::get_if<QuestionFault>(&question);
    return fault == nullptr ? "" : fault->message;
}

CLI::Validator check(std::string (*fault)(const std::string&)) {
    return CLI::Validator([fault](std::string& text) { return fault(text); }, "");
}

void describeProgram(CLI::App& app) {
    app.set_help_flag("-h,--help", "Print this help and exit");
    app.set_version_flag("--version", kVersion, "Print the version and exit");
    app.footer(kHelpEnd);
    app.formatter(std::make_shared<HelpFormatter>());
    app.get_formatter()->column_width(25);
}

void describeInputs(CLI::App& app, Given& given) {
    app.add_option("INPUT", given.inputs,
                   "A document (.json, or /dev/stdin) or a change stream\n"
                   "(.jsonl, or - for standard input); several are applied\n"
                   "in order")
        ->type_name("");
    app.add_option("--plugin", given.plugin, "The plug-in's shared library")->type_name("FILE");
    app.add_option("--toggle-dir", given.toggleFolder, "The folder that holds QosOpenConfig.json")
        ->type_name("DIR")
        ->check(check(folderFault));
}

void describeOutput(CLI::App& app, Given& given, Options& options) {
    app.add_option("--output", given.format,
                   "What to print at the end: table (the default on\n"
                   "a terminal), openconfig (otherwise), entities or none")
        ->type_name("FORMAT")
        ->check(check(formatFault));
    app.add_flag(std::string("--follow{") + kFormUnsaid + '}', given.followForm,
                 "Print each published change of the state tree, as text\n"
                 "(the default on a terminal) or json (otherwise)")
        ->check(check(followFormFault));
    app.add_flag("--machines", options.showsMachines, "Print the live machine tree at the end")
        ->disable_flag_override();
    app.add_option("--explain", given.explained,
                   "Print, at the end, why classifier C (its term T) has\n"
                   "the state it has; in a name ~1 is / and ~0 is ~")
        ->type_name("C[/T]")
        ->check(check(questionFault));
}

void describeTraces(CLI::App& app, Given& given) {
    app.add_option("--trace", given.traces,
                   "Trace a handle (* is all) up to level 0 to 9;\n"
                   "may be given again")
        ->type_name("HANDLE/LEVEL")
        ->allow_extra_args(false)  // what follows its value is an input
        ->check(check(traceFault));
    app.add_option("--trace-file", given.traceFile,
                   "Where trace lines go, if not to standard error")
        ->type_name("FILE");
}

void describeChecks(CLI::App& app, Options& options) {
    app.add_flag("--keep-going", options.keepsGoing,
                 "Report a bad change-stream line and go on with the next")
        ->disable_flag_override();
    app.add_flag("--strict", options.isStrict, "Refuse input that would cause a warning")
        ->disable_flag_override();
    app.add_flag("--check", options.checksOnly,
                 "Check the documents, report every fault (at most 20\n"
                 "of a document), and apply nothing")
        ->disable_flag_override();
}

/// In the order of the help.
void describe(CLI::App& app, Given& given, Options& options) {
    describeProgram(app);
    describeInputs(app, given);
    describeOutput(app, given, options);
    describeTraces(app, given);
    describeChecks(app, options);
}

/// Must be called after the options are parsed: the value of a misspelt option looks like an input.
void checkInputs(const std::vector<std::string>& inputs) {
    for (const std::string& input : inputs)
        if (const std::string fault = inputFault(input); !fault.empty())
            throw CLI::ValidationError("INPUT", fault);
}

OutputFormat formatFrom(const std::string& text, bool isService) {
    if (!text.empty()) return kFormats.at(text);
    if (isService) return OutputFormat::none;
    return ::isatty(STDOUT_FILENO) != 0 ? OutputFormat::table : OutputFormat::openconfig;
}

FollowForm followFormFrom(const std::string& text) {
    if (text != kFormUnsaid) return kFollowForms.at(text);
    return ::isatty(STDOUT_FILENO) != 0 ? FollowForm::text : FollowForm::json;
}

void complete(Options& options, const Given& given) {
    for (const std::string& input : given.inputs)
        (isStream(input) ? options.streams : options.documents).push_back(input);
    for (const std::string& trace : given.traces)
        options.traces.push_back(*traceFrom(trace));
    options.pluginFile = given.plugin.empty() ? defaultPluginFile() : given.plugin;
    options.toggleFolder = given.toggleFolder.empty() ? defaultToggleFolder() : given.toggleFolder;
    options.output = formatFrom(given.format, options.service.isService());
    options.follows = !given.followForm.empty();
    if (options.follows) options.followForm = followFormFrom(given.followForm);
    if (!given.explained.empty())
        options.explained = std::get<Question>(questionFrom(given.explained));
    options.traceFile = given.traceFile;
}

/// Prints the help or the version.
int print(const CLI::App& app, const CLI::ParseError& asked) {
    std::ostringstream text;
    app.exit(asked, text);
    Output out(STDOUT_FILENO);
    out.line(text.view().substr(0, text.view().find_last_not_of('\n') + 1));
    return reportFault(out) ? kUnusable : kAllApplied;
}

}  // namespace

std::variant<Options, ExitStatus> parseOptions(int argc, const char* const* argv) {
    CLI::App app("Hosts the QoS state database and the plug-in that publishes classifier state.",
                 kProgram);
    Given given;
    Options options;
    describe(app, given, options);
    ServiceArguments service(app, options.service);
    try {
        app.parse(argc, argv);
        checkInputs(given.inputs);
        service.complete();
        if (!options.service.connect.empty() && !std::ranges::all_of(given.inputs, isStream))
            throw CLI::ValidationError("--connect", "takes change streams, and no documents");
        if (options.checksOnly && std::ranges::all_of(given.inputs, isStream))
            throw CLI::ValidationError("--check", "no document is given");
    } catch (const CLI::ParseError& answer) {
        if (answer.get_exit_code() == 0) return ExitStatus{print(app, answer)};
        report(refusal(kProgram, messageOf(answer, app)));
        return ExitStatus{kUnusable};
    }
    complete(options, given);
    return options;
}

}  // namespace QosAgent
