#include "agent/gnmi/rpc/UnaryCalls.h"

#include <gnmi.pb.h>

#include <chrono>
#include <utility>

#include "agent/gnmi/Get.h"
#include "agent/gnmi/Set.h"

namespace QosAgent::Gnmi {

namespace {

const Refusal kUnreadable{Code::invalidArgument, "a message that cannot be read"};

/// A call with one request and one answer. Owns itself until gRPC is done with it.
class UnaryCall : public grpc::ServerUnaryReactor,
                  public Call,
                  public std::enable_shared_from_this<UnaryCall> {
public:
    UnaryCall(std::string peer, Calls& calls, grpc::ByteBuffer& response)
        : peer_(std::move(peer)), calls_(calls), response_(response) {}

    /// Keeps the call until it is done. Returns why it must be refused.
    std::optional<Refusal> begin() {
        self_ = shared_from_this();
        auto refusal = calls_.begin(peer_);
        if (!refusal) calls_.add(self_);
        return refusal;
    }

    void abort(const Refusal& refusal) override { end(statusOf(refusal)); }

    template <class Response>
    void succeed(const Response& response) {
        const std::lock_guard lock(mutex_);
        if (std::exchange(isFinished_, true)) return;
        response_ = bufferOf(std::make_shared<const std::string>(response.SerializeAsString()));
        Finish(grpc::Status::OK);
    }

    void OnDone() override {
        const auto keep = std::move(self_);
        calls_.remove(keep);
        calls_.end(peer_);
    }

private:
    void end(const grpc::Status& status) {
        const std::lock_guard lock(mutex_);
        if (std::exchange(isFinished_, true)) return;
        Finish(status);
    }

    const std::string peer_;
    Calls& calls_;
    grpc::ByteBuffer& response_;
    std::shared_ptr<Call> self_;
    std::mutex mutex_;  ///< guards `isFinished_`
    bool isFinished_ = false;
};

using UnaryCallPtr = std::shared_ptr<UnaryCall>;

/// A Set that waits for its answer.
struct PendingSet {
    gnmi::SetRequest request;
    Edits edits;
    UnaryCallPtr call;
};

std::int64_t now() {
    using std::chrono::duration_cast;
    using std::chrono::nanoseconds;
    return duration_cast<nanoseconds>(std::chrono::system_clock::now().time_since_epoch()).count();
}

Refusal refusalOf(const Remark& remark, bool isConflict, const Edits& edits) {
    std::string message = remark.message;
    if (remark.edit && *remark.edit < edits.paths.size())
        message = shown(edits.paths[*remark.edit]) + ": " + message;
    return {isConflict ? Code::failedPrecondition : Code::invalidArgument, std::move(message)};
}

void finishSet(const PendingSet& set, const Answer& applied) {
    if (applied.isBusy) {
        set.call->abort({Code::unavailable, "too many requests wait, or the agent is stopping"});
    } else if (applied.refused) {
        set.call->abort(refusalOf(*applied.refused, applied.isConflict, set.edits));
    } else {
        gnmi::SetResponse response;
        answer(set.request, now(), response);
        set.call->succeed(response);
    }
}

/// What the Set says when its turn comes: wildcards mean what is configured then.
std::string compose(PendingSet& set, const Snapshot& snapshot) {
    auto edits = editsOf(set.request, *Publisher::treeOf(snapshot));
    // What makes a Set wrong has been looked for before, and does not depend on the configuration.
    set.edits = std::get<Edits>(std::move(edits));
    return std::exchange(set.edits.line, {});
}

void runSet(const CallContext& server, const grpc::ByteBuffer& bytes, const UnaryCallPtr& call) {
    auto set = std::make_shared<PendingSet>();
    set->call = call;
    if (!parse(bytes, set->request)) return call->abort(kUnreadable);
    auto edits = editsOf(set->request, *server.publisher.tree());
    if (const auto* refusal = std::get_if<Refusal>(&edits)) return call->abort(*refusal);
    set->edits = std::get<Edits>(std::move(edits));
    if (set->edits.line.empty() && !set->edits.commit) return finishSet(*set, {});
    Request request{std::exchange(set->edits.line, {}), "gnmi", set->edits.commit};
    if (set->edits.hasWildcards)
        request.compose = [set](const Snapshot& snapshot) { return compose(*set, snapshot); };
    server.service.submit(std::move(request),
                          [set](const Answer& applied) { finishSet(*set, applied); });
}

}  // namespace

grpc::ServerUnaryReactor* beginCapabilities(grpc::CallbackServerContext& context,
                                            const CallContext& server,
                                            const grpc::ByteBuffer& request,
                                            grpc::ByteBuffer& response) {
    const auto call = std::make_shared<UnaryCall>(context.peer(), server.calls, response);
    gnmi::CapabilityRequest asked;
    gnmi::CapabilityResponse answered;
    if (const auto refusal = call->begin())
        call->abort(*refusal);
    else if (!parse(request, asked))
        call->abort(kUnreadable);
    else if (const auto wrong = capabilities(asked, answered))
        call->abort(*wrong);
    else
        call->succeed(answered);
    return call.get();
}

grpc::ServerUnaryReactor* beginGet(grpc::CallbackServerContext& context, const CallContext& server,
                                   const grpc::ByteBuffer& request, grpc::ByteBuffer& response) {
    const auto call = std::make_shared<UnaryCall>(context.peer(), server.calls, response);
    gnmi::GetRequest asked;
    gnmi::GetResponse answered;
    if (const auto refusal = call->begin())
        call->abort(*refusal);
    else if (!parse(request, asked))
        call->abort(kUnreadable);
    else if (const auto wrong = get(asked, *server.publisher.tree(), now(), answered))
        call->abort(*wrong);
    else
        call->succeed(answered);
    return call.get();
}

grpc::ServerUnaryReactor* beginSet(grpc::CallbackServerContext& context, const CallContext& server,
                                   const grpc::ByteBuffer& request, grpc::ByteBuffer& response) {
    const auto call = std::make_shared<UnaryCall>(context.peer(), server.calls, response);
    const auto peer = context.auth_context();
    if (const auto refusal = call->begin()) call->abort(*refusal);
    // Who may not change anything learns nothing of what the request would do.
    else if (peer == nullptr || !server.writers.mayWrite(*peer))
        call->abort({Code::permissionDenied, "this client may not change the configuration"});
    else
        runSet(server, request, call);
    return call.get();
}

}  // namespace QosAgent::Gnmi
