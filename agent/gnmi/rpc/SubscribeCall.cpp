#include "agent/gnmi/rpc/SubscribeCall.h"

#include <gnmi.pb.h>

#include <utility>

namespace QosAgent::Gnmi {

namespace {

Refusal wrong(std::string message) {
    return {Code::invalidArgument, std::move(message)};
}

}  // namespace

SubscribeCall* SubscribeCall::begin(grpc::CallbackServerContext& context, Publisher& publisher,
                                    Calls& calls) {
    const std::shared_ptr<SubscribeCall> call(new SubscribeCall(context.peer(), publisher, calls));
    call->self_ = call;
    if (const auto refusal = calls.begin(call->peer_)) {
        call->abort(*refusal);
        return call.get();
    }
    calls.add(call);
    const std::lock_guard lock(call->mutex_);
    call->readNext();
    return call.get();
}

void SubscribeCall::readNext() {
    if (isReading_ || isHalfClosed_ || isFinished_) return;
    isReading_ = true;
    StartRead(&in_);
}

void SubscribeCall::finish(const grpc::Status& status) {
    if (std::exchange(isFinished_, true)) return;
    Finish(status);
}

void SubscribeCall::abort(const Refusal& refusal) {
    const auto keep = shared_from_this();
    const std::lock_guard lock(mutex_);
    finish(statusOf(refusal));
}

std::optional<Refusal> SubscribeCall::open(const gnmi::SubscribeRequest& request) {
    auto list = subscriptionsOf(request);
    if (auto* refusal = std::get_if<Refusal>(&list)) return std::move(*refusal);
    stream_ = std::make_shared<Stream>(std::get<SubscriptionList>(std::move(list)),
                                       publisher_.counters());
    stream_->setWake([weak = weak_from_this()] {
        if (const auto call = weak.lock()) call->pump();
    });
    return std::nullopt;
}

/// Takes a message of the client.
std::optional<Refusal> SubscribeCall::take(const gnmi::SubscribeRequest& request) {
    if (stream_ == nullptr) return open(request);
    if (request.has_subscribe()) return wrong("a second list of subscriptions on one stream");
    if (!request.has_poll()) return wrong("a message that neither subscribes nor polls");
    if (stream_->list().mode != StreamMode::poll)
        return wrong("a poll on a stream whose list does not say POLL");
    return std::nullopt;
}

void SubscribeCall::OnReadDone(bool isRead) {
    const auto keep = shared_from_this();
    std::shared_ptr<Stream> stream;
    bool isNew = false;
    {
        const std::lock_guard lock(mutex_);
        isReading_ = false;
        isHalfClosed_ = !isRead;
        if (isFinished_) return;
        std::optional<Refusal> refusal;
        gnmi::SubscribeRequest request;
        isNew = stream_ == nullptr;
        if (isRead)
            refusal = parse(in_, request) ? take(request) : wrong("a message that cannot be read");
        else if (isNew)
            refusal = wrong("the stream ended before its first message");
        if (refusal) return finish(statusOf(*refusal));
        stream = stream_;
    }
    if (!isRead) return pump();
    if (!isNew)
        stream->poll(publisher_.tree());
    else if (stream->list().mode == StreamMode::stream)
        publisher_.add(std::move(stream));
    else
        stream->begin(publisher_.tree(), Stream::Clock::now());
}

/// Writes the next message, or ends the stream, as far as gRPC is ready for it.
void SubscribeCall::pump() {
    const auto keep = shared_from_this();
    const std::lock_guard lock(mutex_);
    if (isFinished_ || stream_ == nullptr) return;
    if (const auto end = stream_->end(); end && end->code != Code::ok)
        return finish(statusOf(*end));
    if (isWriting_) return;
    if (Bytes bytes = stream_->next()) {
        isWriting_ = true;
        out_ = bufferOf(std::move(bytes));
        StartWrite(&out_);
        return;
    }
    const bool isPolledOut = isHalfClosed_ && stream_->list().mode == StreamMode::poll;
    if (stream_->end() || isPolledOut) return finish(grpc::Status::OK);
    // The next poll is read when the one before is answered, so polls do not pile up here.
    readNext();
}

void SubscribeCall::OnWriteDone(bool isWritten) {
    {
        const std::lock_guard lock(mutex_);
        isWriting_ = false;
        out_.Clear();
        if (!isWritten) return finish(grpc::Status::CANCELLED);
    }
    pump();
}

void SubscribeCall::OnCancel() {
    const auto keep = shared_from_this();
    const std::lock_guard lock(mutex_);
    finish(grpc::Status::CANCELLED);
}

void SubscribeCall::OnDone() {
    const auto keep = std::move(self_);
    if (stream_ != nullptr) publisher_.remove(stream_);
    calls_.remove(keep);
    calls_.end(peer_);
}

}  // namespace QosAgent::Gnmi
