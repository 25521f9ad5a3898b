#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "agent/feed/Snapshot.h"
#include "agent/feed/Subscription.h"
#include "agent/service/Statistics.h"

/// The one interface of the core that doors see: plain data, callable from any thread.
namespace QosAgent {

/// What a request has to do with a commit that has to be confirmed: an edit of the configuration
/// that is taken back unless its confirmation comes in time. There is one at a time.
struct CommitAction {
    enum class Kind {
        begin,     ///< the request's line begins one
        confirm,   ///< what was committed stays
        cancel,    ///< what was committed is taken back now
        postpone,  ///< the time begins anew
    };
    Kind kind = Kind::begin;
    std::string id;  ///< chosen by the client; every later action has to repeat it
    std::chrono::milliseconds time{};  ///< until it is taken back; of `begin` and `postpone`

    friend bool operator==(const CommitAction&, const CommitAction&) = default;
};

struct Answer;

/// One operation, as the text of a change-stream line.
struct Request {
    /// May be empty if there is a `commit`.
    std::string line;
    /// Where the request came from, for the record: `socket`, `gnmi`, `redis`, `-` for standard
    /// input, or the name of a file.
    std::string door;
    std::optional<CommitAction> commit = {};
    /// Composes the line when the request's turn comes, from the snapshot of that moment, for what
    /// cannot be said before. Called on the event thread, once; must not wait. If it is empty, the
    /// line is as it stands.
    std::function<std::string(const Snapshot&)> compose = {};
    /// Called on the event thread as soon as the request is applied or refused, with what will be
    /// its answer if it is kept: whoever submits one request after the other may submit the next.
    /// Not called for a request that is answered as busy. May be null.
    std::function<void(const Answer&)> applied = {};
};

/// A remark about the text of a request.
struct Remark {
    std::size_t column;  ///< in bytes, from 1
    std::string message;
    /// Of `configure` only: which edit the remark is about, from 0.
    std::optional<std::size_t> edit = {};

    friend bool operator==(const Remark&, const Remark&) = default;
};

/// What became of a request.
struct Answer {
    /// What the request printed: pieces of text without their last line end, which may hold several
    /// lines each.
    std::vector<std::string> lines;
    std::vector<Remark> warnings;
    /// Why the request was refused; nothing was applied then.
    std::optional<Remark> refused;
    /// The request was never tried: too many are waiting, or the service is stopping.
    bool isBusy = false;
    /// The request was refused for what it meets, not for what it says: a commit waits for its
    /// confirmation, or none does.
    bool isConflict = false;
    /// The line itself, if it was refused.
    std::string line;
    /// A `follow` line asked to begin (true) or end (false) following on its stream.
    std::optional<bool> follows;

    friend bool operator==(const Answer&, const Answer&) = default;
};

class Service {
public:
    using Done = std::function<void(Answer)>;

    virtual ~Service() = default;

    /// Applies the request on the event thread, whole, after those submitted before it. Calls `done`
    /// there exactly once, in the order of submission, when the request is applied and, where there
    /// is a store, kept, or when it is refused. `done` must not wait. A request
    /// that is not accepted is answered as busy before `submit` returns, on the calling thread; one
    /// that was not begun when the service stops is answered as busy, too.
    virtual void submit(Request request, Done done) = 0;

    /// The published state as it is after some request, no earlier than the last one answered, and
    /// kept where there is a store.
    virtual Snapshot snapshot() = 0;

    /// Begins a subscription that starts with the latest snapshot. `wake` is called on the event
    /// thread whenever changes begin to wait: it must only post a notice to the reader's thread; it
    /// must neither wait nor call the subscription. The subscription may outlive the service.
    virtual std::unique_ptr<Subscription> subscribe(std::function<void()> wake) = 0;

    /// Calls `done` on the event thread, between two requests, with the latest figures. `done` must
    /// not wait; it is dropped if the service ends before.
    virtual void statistics(std::function<void(Statistics)> done) = 0;

    /// Where the gNMI door counts its streams, so that `statistics` has them. They live as long as
    /// the service.
    virtual StreamCounters& grpcCounters() = 0;
};

}  // namespace QosAgent
