#include "agent/gnmi/rpc/Refusing.h"

#include "agent/gnmi/rpc/Listener.h"

namespace QosAgent::Gnmi {

namespace {

/// Owns itself until gRPC is done with it.
class RefusedCall final : public grpc::ServerGenericBidiReactor {
public:
    RefusedCall() {
        Finish({grpc::StatusCode::RESOURCE_EXHAUSTED,
                "more than " + std::to_string(Listener::kMostConnections) + " connections"});
    }
    void OnDone() override { delete this; }
};

}  // namespace

grpc::ServerGenericBidiReactor* RefusingMethods::CreateReactor(
    grpc::GenericCallbackServerContext*) {
    return new RefusedCall();
}

void limitRefusing(grpc::ServerBuilder& builder) {
    builder.SetMaxReceiveMessageSize(4 << 20);
    builder.AddChannelArgument(GRPC_ARG_SERVER_HANDSHAKE_TIMEOUT_MS, 5'000);
    builder.AddChannelArgument(GRPC_ARG_MAX_CONNECTION_AGE_MS, 2'000);
    builder.AddChannelArgument(GRPC_ARG_MAX_CONNECTION_AGE_GRACE_MS, 500);
}

}  // namespace QosAgent::Gnmi
