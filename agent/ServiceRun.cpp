#include "agent/ServiceRun.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>
#include <variant>

#include "agent/host/InstalledModule.h"
#include "agent/json/Visible.h"
#include "agent/loop/LoopModule.h"
#include "agent/output/Diagnostics.h"
#include "platform/OvSlab/Tracker.h"

namespace QosAgent {
namespace {

constexpr const char* kProgram = "qos-agent";
constexpr InstalledLibrary kLoopLibrary{"libqos-agent-loop.so", "qos-agent", kLoopSymbol};

/// Tells on standard error what has been opened.
void tell(const std::string& text) {
    Output(STDERR_FILENO).line(visible(std::string(kProgram) + ": " + text));
}

bool refuse(const std::string& what, const std::string& why) {
    report(refusal(what, why));
    return false;
}

}  // namespace

ServiceRun::ServiceRun(const Options& options, RequestApplier& applier, Feed& feed, Keeper* keeper,
                       Handlers handlers)
    : options_(options),
      applier_(applier),
      feed_(feed),
      keeper_(keeper),
      handlers_(std::move(handlers)) {}

ServiceRun::~ServiceRun() {
    close();
}

bool ServiceRun::run() {
    if (!openLoop() || !openSocket()) return false;
    for (const DoorRequest& door : options_.service.doors)
        if (!openDoor(door)) return false;
    watchSignals();
    loop_->notify("READY=1");
    loop_->feedWatchdog();
    readStreams();
    loop_->run();
    loop_->notify("STOPPING=1");
    close();
    return !isFailed_;
}

bool ServiceRun::openLoop() {
    const auto module = moduleOf<LoopModule>(kLoopLibrary, kLoopVersion);
    if (const auto* fault = std::get_if<std::string>(&module)) return refuse(kProgram, *fault);
    loop_ = std::get<const LoopModule*>(module)->make();
    commits_.emplace(*loop_,
                     [this](Request request) { return applier_.apply(std::move(request)); });
    queue_.emplace(
        *loop_, feed_, [this](Request request) { return commits_->apply(std::move(request)); },
        keeper_);
    queue_->statisticsSourceIs([this](Statistics& statistics) { addStatistics(statistics); });
    if (keeper_ != nullptr) {
        keeper_->wakeIs([this] { loop_->post([this] { pollKeeper(); }); });
        keeper_->keptIs([this](std::chrono::nanoseconds time) { commitTimes_.add(time); });
    }
    return true;
}

void ServiceRun::pollKeeper() {
    keeper_->poll();
    queue_->goOn();
}

/// Machines are the objects of the plug-in, whose names end in `Sm`.
void ServiceRun::addStatistics(Statistics& statistics) const {
    statistics.version = QOS_AGENT_VERSION;
    // The store is a file of this machine: there is none that could be away.
    if (keeper_ != nullptr) statistics.store = {false, commitTimes_};
    statistics.socketConnections = server_ ? server_->connections() : 0;
    for (auto* type = OvSlab::Tracker::first(); type != nullptr; type = type->next())
        if (type->typeName().ends_with("Sm") && type->live() > 0)
            statistics.machines.push_back({std::string(type->typeName()), type->live()});
    std::ranges::sort(statistics.machines, {}, &Statistics::Objects::type);
}

bool ServiceRun::openSocket() {
    const std::string& name = options_.service.listen;
    if (name.empty()) return true;
    auto taken = SocketPath::take(name);
    if (const auto* fault = std::get_if<std::string>(&taken))
        return refuse(name, "cannot be listened on: " + *fault);
    auto& path = std::get<SocketPath>(taken);
    const int fd = path.listen();
    if (fd < 0) return refuse(name, std::string("cannot be listened on: ") + std::strerror(errno));
    server_.emplace(std::move(path), fd, *loop_, *queue_, feed_);
    tell("listening on " + name);
    return true;
}

bool ServiceRun::openDoor(const DoorRequest& request) {
    const auto module = moduleOf<DoorModule>(request.library, kDoorVersion);
    if (const auto* fault = std::get_if<std::string>(&module))
        return refuse(kProgram, request.option + ' ' + *fault);
    feed_.keepState();
    auto opened = std::get<const DoorModule*>(module)->open(*queue_, request.options);
    if (const auto* fault = std::get_if<std::string>(&opened)) return refuse(kProgram, *fault);
    doors_.push_back(std::get<std::unique_ptr<Door>>(std::move(opened)));
    tell(doors_.back()->description());
    return true;
}

void ServiceRun::watchSignals() {
    for (const int signal : BlockedSignals::kStopping)
        sources_.push_back(loop_->onSignal(signal, [this] { stop(); }));
    sources_.push_back(loop_->onSignal(BlockedSignals::kReloading, [this] { reload(); }));
}

void ServiceRun::readStreams() {
    streams_.emplace(options_.streams, *loop_, *queue_,
                     InputStreams::Handlers{[this](const AnsweredLine& line) {
                                                if (line.answer.isBusy || handlers_.answered(line))
                                                    return true;
                                                fail();
                                                return false;
                                            },
                                            [this](const std::string& stream, int error) {
                                                report(refusal(stream, std::strerror(error)));
                                                fail();
                                            }});
    streams_->start();
}

void ServiceRun::reload() {
    handlers_.reopen();
    for (const auto& door : doors_)
        if (const std::string fault = door->reload(); !fault.empty()) refuse(kProgram, fault);
}

/// A second signal ends the process at once.
void ServiceRun::stop() {
    sources_.clear();
    signals_.release();
    loop_->stop();
}

void ServiceRun::fail() {
    isFailed_ = true;
    loop_->stop();
}

/// From the outside inwards: whoever may still submit goes first.
void ServiceRun::close() {
    if (queue_) queue_->stop();
    if (keeper_ != nullptr) {
        keeper_->wakeIs({});
        keeper_->flush();
        keeper_->keptIs({});
    }
    doors_.clear();
    server_.reset();
    streams_.reset();
    queue_.reset();
    commits_.reset();
    sources_.clear();
    loop_.reset();
}

}  // namespace QosAgent
