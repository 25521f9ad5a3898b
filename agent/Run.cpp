#include "agent/Run.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <functional>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "agent/ServiceRun.h"
#include "agent/StreamRun.h"
#include "agent/connect/ClientRun.h"
#include "agent/documents/DocumentCheck.h"
#include "agent/documents/DocumentLoad.h"
#include "agent/feed/Feed.h"
#include "agent/host/File.h"
#include "agent/host/PluginHost.h"
#include "agent/host/ToggleFolder.h"
#include "agent/json/Excerpt.h"
#include "agent/openconfig/Configuration.h"
#include "agent/openconfig/PolicyMapWatch.h"
#include "agent/options/ExitCodes.h"
#include "agent/output/Diagnostics.h"
#include "agent/output/ExplanationText.h"
#include "agent/output/Follower.h"
#include "agent/output/Machines.h"
#include "agent/output/Results.h"
#include "agent/output/Terminal.h"
#include "agent/service/Record.h"
#include "agent/service/RequestApplier.h"
#include "agent/store/OpenStore.h"
#include "agent/streams/Operations.h"
#include "agent/trace/TraceOutput.h"
#include "platform/Agent/Toggles.h"
#include "platform/Vex/Trace.h"

namespace QosAgent {
namespace {

/// Why the program cannot go on.
using Refusal = std::optional<Diagnostic>;

constexpr const char* kPassedOver =
    "documents were passed over, as the store holds a database; --apply-documents applies them";
constexpr const char* kToggleFile = "QosOpenConfig.json";

std::string unknownHandle(const std::string& name, const std::vector<std::string_view>& known) {
    std::string message = "--trace: unknown handle " + excerpt(name) + ", expected one of *";
    for (const std::string_view handle : known)
        message.append(", ").append(handle);
    return message;
}

Strictness strictnessOf(const Options& options) {
    return options.isStrict ? Strictness::refuses : Strictness::warns;
}

/// Whether writing to the file would destroy something that is read.
bool isAlsoRead(const std::string& file, const Options& options) {
    const auto isFile = [&](const std::string& read) { return isSameFile(file, read); };
    return std::ranges::any_of(options.documents, isFile) ||
           std::ranges::any_of(options.streams, isFile) || isFile(options.pluginFile) ||
           isFile(options.toggleFolder + '/' + kToggleFile);
}

/// What the command line asked for, step by step.
class AgentRun : private StreamOutput {
public:
    /// `reopenTraces` opens the file of trace lines anew.
    AgentRun(const Options& options, std::function<void()> reopenTraces)
        : options_(options),
          reopenTraces_(std::move(reopenTraces)),
          out_(STDOUT_FILENO),
          configuration_(database_, strictnessOf(options)),
          host_(database_.entityManager()) {}

    int run() {
        if (const Refusal refused = start()) {
            report(*refused);
            return kUnusable;
        }
        if (!(options_.service.isService() ? serve() : applyStreams())) return kUnusable;
        follower_.reset();
        printResults();
        return endStatus();
    }

private:
    Refusal start() {
        if (Refusal refused = openStore()) return refused;
        if (Refusal refused = openRecord()) return refused;
        applier_.emplace(operations_, feed_, record_ ? &*record_ : nullptr, keeper());
        ToggleFolder toggles(options_.toggleFolder);
        const auto read = toggles.read(kToggleFile);
        if (const auto* refused = std::get_if<Diagnostic>(&read)) return *refused;
        ::Agent::toggleReaderIs([toggles](auto toggle, auto file, bool fallback) mutable {
            return toggles.state(toggle, file, fallback);
        });
        if (Refusal refused = loadDocuments()) return refused;
        if (options_.follows) followIs(true);
        if (const auto fault = host_.load(options_.pluginFile))
            return refusal(options_.pluginFile, *fault);
        warnOfUnknownHandles();
        const StoreFault fault = store_ ? store_->keepAll() : StoreFault();
        return fault.empty() ? Refusal() : refusal("qos-agent", "--store: " + fault);
    }
    /// What is kept comes first: a restart must not undo what clients have set.
    Refusal loadDocuments() {
        const bool isPassedOver =
            store_ && store_->hadContents() && !options_.service.appliesDocuments;
        if (isPassedOver && !options_.documents.empty()) report(warning("qos-agent", kPassedOver));
        if (isPassedOver) return {};
        DocumentLoad documents(database_, configuration_);
        for (const std::string& document : options_.documents)
            if (Refusal refused = documents.load(document)) return refused;
        return {};
    }
    /// The plug-in has registered its handles by now.
    void warnOfUnknownHandles() const {
        const std::vector<std::string_view> known = Vex::traceHandleNames();
        for (const TraceSetting& setting : options_.traces)
            if (setting.handle != "*" && !std::ranges::count(known, setting.handle))
                report(warning("qos-agent", unknownHandle(setting.handle, known)));
    }
    Refusal openStore() {
        const auto& asked = options_.service.store;
        if (!asked) return {};
        auto opened = OpenStore::open(asked->library, asked->options.front().second, database_,
                                      configuration_, feed_);
        if (const auto* fault = std::get_if<StoreFault>(&opened))
            return refusal("qos-agent", asked->option + ' ' + *fault);
        store_ = std::get<std::unique_ptr<OpenStore>>(std::move(opened));
        return {};
    }
    Keeper* keeper() { return store_ ? &store_->keeper() : nullptr; }
    Refusal openRecord() {
        const std::string& name = options_.service.record;
        if (name.empty()) return {};
        if (isAlsoRead(name, options_))
            return refusal(name, "--record would write to a file that is read");
        record_.emplace(name);
        if (record_->error() != 0) return refusal(name, std::strerror(record_->error()));
        return {};
    }
    /// False when the program cannot go on.
    bool serve() {
        feed_.configurationSourceIs([this] { return configuration_.tree(); });
        PolicyMapWatch policyMaps(database_);
        feed_.policyMapsSourceIs([&policyMaps] { return policyMaps.names(); });
        const bool isServed = ServiceRun(options_, *applier_, feed_, keeper(),
                                         {[this](const AnsweredLine& line) { return print(line); },
                                          [this] { reopenFiles(); }})
                                  .run();
        feed_.policyMapsSourceIs([] { return PolicyMapNames(); });
        return isServed;
    }
    bool print(const AnsweredLine& line) {
        for (const std::string& text : line.answer.lines)
            out_.line(text);
        if (line.answer.follows) followIs(*line.answer.follows);
        return accepted(line);
    }
    void reopenFiles() {
        if (record_) record_->reopen();
        reopenTraces_();
    }
    bool applyStreams() {
        return StreamRun(options_, *applier_, keeper(),
                         {*this, out_, [this](const AnsweredLine& line) { return accepted(line); }})
            .run();
    }
    bool accepted(const AnsweredLine& line) {
        reportAnswer(line);
        if (!line.answer.refused) return true;
        isSomeRefused_ = true;
        return options_.keepsGoing;
    }
    /// What is written tells that all before it is kept.
    void line(std::string_view text) override {
        if (store_) store_->keeper().flush();
        out_.line(text);
    }
    void followIs(bool follows) override {
        if (!follows)
            follower_.reset();
        else if (!follower_)
            follower_.emplace(feed_, out_, options_.followForm, database_.stateTree());
    }
    void printResults() {
        const Terminal terminal = terminalOn(STDOUT_FILENO);
        if (options_.output != OutputFormat::none)
            out_.line(resultText(options_.output, database_, terminal));
        if (options_.showsMachines) {
            const std::string tree = machineTree(database_, host_.mounters());
            if (!tree.empty()) out_.line(tree);
        }
        if (options_.explained)
            out_.line(explanationText(Explainer(database_).explain(*options_.explained), terminal));
    }
    int endStatus() const {
        // A reader of followed changes who has seen enough goes away: that is no fault.
        const bool isDone = options_.follows && out_.isReaderGone();
        if (!isDone && reportFault(out_)) return kUnusable;
        return isSomeRefused_ ? kSomeRefused : kAllApplied;
    }

    const Options& options_;
    std::function<void()> reopenTraces_;
    Output out_;
    Database database_;
    Configuration configuration_;
    Feed feed_{database_};
    PluginHost host_;
    Operations operations_{database_, configuration_, host_};
    std::optional<Record> record_;
    std::unique_ptr<OpenStore> store_;
    std::optional<RequestApplier> applier_;
    std::optional<Follower> follower_;
    bool isSomeRefused_ = false;
};

/// What `--check` asks for; returns the exit status.
int check(const Options& options) {
    for (const std::string& stream : options.streams)
        report(warning(stream, "not checked: --check reads documents only"));
    DocumentCheck documents(strictnessOf(options));
    bool isGood = true;
    for (const std::string& document : options.documents)
        isGood = documents.check(document) && isGood;
    return isGood ? kAllApplied : kUnusable;
}

/// After a log's old file was moved away.
void reopen(std::optional<File>& file, const std::string& name) {
    if (!file) return;
    if (const int error = file->reopen(File::toAppend(name, 0666)); error != 0)
        report(refusal(name, std::strerror(error)));
}

}  // namespace

int run(const Options& options) {
    if (!options.traceFile.empty() && isAlsoRead(options.traceFile, options)) {
        report(refusal(options.traceFile, "--trace-file would empty a file that is read"));
        return kUnusable;
    }
    std::optional<File> traceFile;
    if (!options.traceFile.empty()) traceFile.emplace(File::toWrite(options.traceFile));
    if (traceFile && traceFile->error() != 0) {
        report(refusal(options.traceFile, std::strerror(traceFile->error())));
        return kUnusable;
    }
    const TraceOutput traces(traceFile ? traceFile->fd() : STDERR_FILENO);
    for (const TraceSetting& setting : options.traces)
        Vex::traceLevelsIs(setting.handle, setting.level + 1);
    const int status = AgentRun(options, [&] { reopen(traceFile, options.traceFile); }).run();
    if (!traceFile || traces.fault().empty()) return status;
    report(refusal(options.traceFile, traces.fault()));
    return kUnusable;
}

int runProgram(int argc, const char* const* argv) {
    try {
        const auto options = parseOptions(argc, argv);
        if (const auto* ended = std::get_if<ExitStatus>(&options)) return ended->status;
        const auto& asked = std::get<Options>(options);
        if (asked.checksOnly) return check(asked);
        return asked.service.connect.empty() ? run(asked) : runClient(asked);
    } catch (const std::bad_alloc&) {
        // Composing a line would need memory.
        constexpr std::string_view line = "qos-agent: out of memory\n";
        [[maybe_unused]] const auto written = ::write(STDERR_FILENO, line.data(), line.size());
    } catch (const std::exception& failure) {
        report(refusal("qos-agent", failure.what()));
    }
    return kUnusable;
}

}  // namespace QosAgent
