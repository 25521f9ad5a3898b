#pragma once

#include <gnmi.grpc.pb.h>
#include <grpcpp/grpcpp.h>

#include <memory>
#include <string>

#include "tests/agent/gnmi/Messages.h"
#include "tests/agent/gnmi/Trees.h"

namespace QosAgent::Gnmi {

using Stub = gnmi::gNMI::Stub;

/// A client with a connection of its own.
inline std::shared_ptr<grpc::Channel> channelTo(
    const std::string& address, const std::shared_ptr<grpc::ChannelCredentials>& credentials =
                                    grpc::InsecureChannelCredentials()) {
    grpc::ChannelArguments arguments;
    arguments.SetInt(GRPC_ARG_USE_LOCAL_SUBCHANNEL_POOL, 1);
    arguments.SetMaxReceiveMessageSize(-1);
    // Without a look-up of the name, which leaks.
    const std::string target = address.starts_with("unix:") ? address : "ipv4:" + address;
    return grpc::CreateCustomChannel(target, credentials, arguments);
}

/// One Subscribe stream.
class ClientStream {
public:
    ClientStream(Stub& stub, const std::string& request) {
        context_.set_deadline(std::chrono::system_clock::now() + std::chrono::seconds(30));
        stream_ = stub.Subscribe(&context_);
        send(request);
    }
    void send(const std::string& request) {
        stream_->Write(message<gnmi::SubscribeRequest>(request));
    }
    void halfClose() { stream_->WritesDone(); }
    void cancel() { context_.TryCancel(); }
    grpc::Status finish() {
        gnmi::SubscribeResponse response;
        while (stream_->Read(&response)) {
        }
        return stream_->Finish();
    }
    /// The next message as `-NAME` and `NAME=JSON` of its last elements, or `sync`; `end` behind
    /// the last.
    Lines next() {
        gnmi::SubscribeResponse response;
        if (!stream_->Read(&response)) return {"end"};
        if (response.sync_response()) return {"sync"};
        Lines lines;
        for (const auto& path : response.update().delete_())
            lines.push_back("-" + nameOf(path));
        for (const auto& update : response.update().update())
            lines.push_back(nameOf(update.path()) + "=" + update.val().json_val());
        return lines;
    }

private:
    static std::string nameOf(const gnmi::Path& path) {
        return path.elem_size() == 0 ? "/" : path.elem(path.elem_size() - 1).name();
    }

    grpc::ClientContext context_;
    std::unique_ptr<grpc::ClientReaderWriter<gnmi::SubscribeRequest, gnmi::SubscribeResponse>>
        stream_;
};

inline grpc::Status get(Stub& stub, const std::string& request, gnmi::GetResponse& response) {
    grpc::ClientContext context;
    return stub.Get(&context, message<gnmi::GetRequest>(request), &response);
}

inline grpc::Status set(Stub& stub, const std::string& request) {
    grpc::ClientContext context;
    gnmi::SetResponse response;
    return stub.Set(&context, message<gnmi::SetRequest>(request), &response);
}

}  // namespace QosAgent::Gnmi
