#include "agent/connect/ClientRun.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <optional>
#include <string>
#include <variant>

#include "agent/connect/MachineReader.h"
#include "agent/connect/RemarkLine.h"
#include "agent/connect/ServiceConnection.h"
#include "agent/database/Document.h"
#include "agent/explain/Explainer.h"
#include "agent/host/File.h"
#include "agent/options/ExitCodes.h"
#include "agent/output/Diagnostics.h"
#include "agent/output/ExplanationText.h"
#include "agent/output/FollowOutput.h"
#include "agent/output/Output.h"
#include "agent/output/Progress.h"
#include "agent/output/Results.h"
#include "agent/streams/AnsweredLine.h"
#include "agent/streams/Operations.h"
#include "agent/streams/StopSignals.h"

namespace QosAgent {
namespace {

/// While a longer line is sent, people see how far it is.
constexpr std::size_t kLongLine = std::size_t{1} << 20;

/// What the command line asked for, as a client.
class ClientRun {
public:
    explicit ClientRun(const Options& options)
        : options_(options),
          out_(STDOUT_FILENO),
          lines_(out_, options.follows ? options.followForm : FollowForm::json),
          service_(options.service.connect) {}

    int run() {
        if (!service_.fault().empty()) return unusable(name(), service_.fault());
        if (options_.follows && !follow()) return broken();
        const int status = applyStreams();
        if (status == kUnusable) return status;
        if (options_.follows && !command(R"({"follow":false})")) return broken();
        if (!printResults()) return broken();
        return reportFault(out_) ? kUnusable : status;
    }

private:
    const std::string& name() const { return options_.service.connect; }

    /// Applies the streams, or follows until a signal asks to stop. Returns the exit status.
    int applyStreams() {
        const StopSignals stop;
        for (const std::string& stream : options_.streams) {
            if (stop.isStopRequested()) break;
            if (!applyStream(stream, stop)) return kUnusable;
        }
        const bool waits = options_.follows && options_.streams.empty();
        while (waits && !stop.isStopRequested())
            if (!passOn(-1, stop)) return broken();
        return isSomeRefused_ ? kSomeRefused : kAllApplied;
    }
    bool applyStream(const std::string& stream, const StopSignals& stop) {
        const File file = File::toReadLater(stream);
        if (file.error() != 0) return kUnusable != unusable(stream, std::strerror(file.error()));
        LineBuffer lines(Limits{}.lineBytes);
        bool isAtEnd = false;
        while (out_.fault().empty() && !stop.isStopRequested()) {
            if (lines.next() || (isAtEnd && lines.last())) {
                if (!apply(stream, file.isKept(), lines)) return false;
                continue;
            }
            if (isAtEnd) return true;
            if (!passOn(file.fd(), stop)) return kUnusable != broken();
            if (stop.isStopRequested()) return true;
            const ssize_t count = ::read(file.fd(), lines.room().data(), lines.room().size());
            if (count < 0 && errno == EINTR) continue;
            if (count < 0) return kUnusable != unusable(stream, std::strerror(errno));
            isAtEnd = count == 0;
            lines.filled(static_cast<std::size_t>(count));
        }
        return true;
    }
    /// Applies one line. False when the program cannot go on.
    bool apply(const std::string& stream, bool isKept, const LineBuffer& lines) {
        if (isPassedOver(lines.line())) return true;
        Answer answer;
        if (!send(lines.line(), stream, answer)) return kUnusable != broken();
        if (answer.refused) answer.line = lines.line();
        reportAnswer({stream, isKept, lines.number(), answer});
        if (!answer.refused) return true;
        isSomeRefused_ = true;
        return options_.keepsGoing;
    }
    bool send(std::string_view line, const std::string& stream, Answer& answer) {
        std::optional<Progress> progress;
        if (line.size() > kLongLine) progress.emplace(stream);
        return service_.exchange(
            line,
            [&](std::string_view received) {
                if (!takeRemark(received, answer)) lines_.line(received);
            },
            [&](std::size_t bytes) {
                if (progress) progress->doneIs(bytes, line.size());
            });
    }
    /// Waits until the input can be read, and prints what is followed meanwhile. False if the
    /// connection broke.
    bool passOn(int input, const StopSignals& stop) {
        for (;;) {
            std::array<pollfd, 2> waited{{{service_.fd(), POLLIN, 0}, {input, POLLIN, 0}}};
            if (!stop.wait(waited)) return true;
            if (waited[0].revents != 0) {
                if (!service_.receive([this](std::string_view line) { lines_.line(line); }))
                    return false;
                if (!out_.fault().empty()) return true;
            }
            if (waited[1].revents != 0) return true;
        }
    }
    /// Sends a line of the program's own, and prints what is followed meanwhile. False if the
    /// connection broke.
    bool command(std::string_view line) {
        return service_.exchange(line,
                                 [this](std::string_view received) { lines_.line(received); });
    }
    bool follow() {
        if (lines_.needsState()) {
            const auto state = ask(R"({"print":"state"})");
            if (!state) return false;
            lines_.stateIs(*state);
        }
        return command(R"({"follow":true})");
    }
    /// Sends a line of the program's own; returns what it printed, nothing if the connection broke.
    std::optional<std::string> ask(std::string_view line) {
        std::string text;
        const bool isAnswered = service_.exchange(line, [&](std::string_view received) {
            text.append(text.empty() ? "" : "\n").append(received);
        });
        return isAnswered ? std::optional(std::move(text)) : std::nullopt;
    }
    bool printResults() {
        Database copy;
        if ((options_.output != OutputFormat::none || options_.explained) && !fetch(copy))
            return false;
        const Terminal terminal = terminalOn(STDOUT_FILENO);
        if (options_.output != OutputFormat::none)
            out_.line(resultText(options_.output, copy, terminal));
        if (options_.showsMachines && !printMachines()) return false;
        if (options_.explained)
            out_.line(explanationText(Explainer(copy).explain(*options_.explained), terminal));
        return true;
    }
    /// Makes an empty database a copy of the service's.
    bool fetch(Database& copy) {
        const auto document = ask(R"({"print":"database"})");
        if (!document) return false;
        const JsonResult json = parseJson(*document);
        if (!std::holds_alternative<Json>(json) ||
            checkDocument(copy, std::get<Json>(json).root()).has_value())
            return service_.broke("the service prints no database");
        mergeDocument(copy, std::get<Json>(json).root());
        return true;
    }
    bool printMachines() {
        const auto machines = ask(R"({"print":"machines"})");
        if (!machines) return false;
        const JsonResult json = parseJson(*machines);
        if (!std::holds_alternative<Json>(json))
            return service_.broke("the service prints no machines");
        const std::string tree = machineTree(std::get<Json>(json).root());
        if (!tree.empty()) out_.line(tree);
        return true;
    }
    int broken() const { return unusable(name(), service_.fault()); }
    static int unusable(const std::string& file, const std::string& why) {
        report(refusal(file, why));
        return kUnusable;
    }

    const Options& options_;
    Output out_;
    FollowOutput lines_;  ///< what the service sends: followed changes in the form asked for
    ServiceConnection service_;
    bool isSomeRefused_ = false;
};

}  // namespace

int runClient(const Options& options) {
    return ClientRun(options).run();
}

}  // namespace QosAgent
