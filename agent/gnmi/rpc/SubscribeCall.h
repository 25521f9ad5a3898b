#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "agent/gnmi/Publisher.h"
#include "agent/gnmi/rpc/Calls.h"

namespace gnmi {
class SubscribeRequest;
}  // namespace gnmi

namespace QosAgent::Gnmi {

/// One Subscribe stream of a client: moves messages between gRPC and a `Stream`, one write at a
/// time. Owns itself until gRPC is done with it.
class SubscribeCall final : public grpc::ServerBidiReactor<grpc::ByteBuffer, grpc::ByteBuffer>,
                            public Call,
                            public std::enable_shared_from_this<SubscribeCall> {
public:
    /// Both outlive the call.
    static SubscribeCall* begin(grpc::CallbackServerContext& context, Publisher& publisher,
                                Calls& calls);

    void abort(const Refusal& refusal) override;

    void OnReadDone(bool isRead) override;
    void OnWriteDone(bool isWritten) override;
    void OnCancel() override;
    void OnDone() override;

private:
    SubscribeCall(std::string peer, Publisher& publisher, Calls& calls)
        : peer_(std::move(peer)), publisher_(publisher), calls_(calls) {}

    std::optional<Refusal> take(const gnmi::SubscribeRequest& request);
    std::optional<Refusal> open(const gnmi::SubscribeRequest& request);
    void pump();
    void finish(const grpc::Status& status);
    void readNext();

    const std::string peer_;
    Publisher& publisher_;
    Calls& calls_;
    std::shared_ptr<SubscribeCall> self_;

    std::mutex mutex_;  ///< guards what follows
    std::shared_ptr<Stream> stream_;
    grpc::ByteBuffer in_;
    grpc::ByteBuffer out_;
    bool isReading_ = false;
    bool isHalfClosed_ = false;
    bool isWriting_ = false;
    bool isFinished_ = false;
};

}  // namespace QosAgent::Gnmi
