#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "agent/feed/Feed.h"
#include "agent/host/BlockedSignals.h"
#include "agent/loop/Loop.h"
#include "agent/options/Options.h"
#include "agent/service/ConfirmedCommits.h"
#include "agent/service/Door.h"
#include "agent/service/RequestApplier.h"
#include "agent/service/RequestQueue.h"
#include "agent/socket/SocketServer.h"
#include "agent/streams/InputStreams.h"

namespace QosAgent {

/// The part of a run that is a service: from the opening of its doors until it is told to stop.
class ServiceRun {
public:
    struct Handlers {
        /// A line of an INPUT stream was answered. Returns whether the service goes on.
        std::function<bool(const AnsweredLine& line)> answered;
        /// SIGHUP was received: files that are written to are to be opened anew.
        std::function<void()> reopen;
    };

    /// The caller keeps alive what it passes. `keeper` may be null.
    ServiceRun(const Options& options, RequestApplier& applier, Feed& feed, Keeper* keeper,
               Handlers handlers);
    ~ServiceRun();

    /// Serves until a signal asks to stop. Returns false if the service could not be had or had to
    /// end; that was reported.
    bool run();

private:
    bool openLoop();
    bool openSocket();
    bool openDoor(const DoorRequest& request);
    void addStatistics(Statistics& statistics) const;
    void watchSignals();
    void readStreams();
    void reload();
    void stop();
    void fail();
    void pollKeeper();
    void close();

    const Options& options_;
    RequestApplier& applier_;
    Feed& feed_;
    Keeper* keeper_;
    TimeHistogram commitTimes_;
    Handlers handlers_;
    BlockedSignals signals_;
    std::unique_ptr<Loop> loop_;
    std::vector<Loop::SourcePtr> sources_;
    std::optional<ConfirmedCommits> commits_;
    std::optional<RequestQueue> queue_;
    std::optional<SocketServer> server_;
    std::vector<std::unique_ptr<Door>> doors_;
    std::optional<InputStreams> streams_;
    bool isFailed_ = false;
};

}  // namespace QosAgent
