#pragma once

#include "agent/gnmi/Publisher.h"
#include "agent/gnmi/rpc/Calls.h"
#include "agent/gnmi/rpc/Credentials.h"

namespace QosAgent::Gnmi {

/// What calls need of the server. All of it outlives them.
struct CallContext {
    Service& service;
    Publisher& publisher;
    Calls& calls;
    const Writers& writers;
};

grpc::ServerUnaryReactor* beginCapabilities(grpc::CallbackServerContext& context,
                                            const CallContext& server,
                                            const grpc::ByteBuffer& request,
                                            grpc::ByteBuffer& response);
grpc::ServerUnaryReactor* beginGet(grpc::CallbackServerContext& context, const CallContext& server,
                                   const grpc::ByteBuffer& request, grpc::ByteBuffer& response);
grpc::ServerUnaryReactor* beginSet(grpc::CallbackServerContext& context, const CallContext& server,
                                   const grpc::ByteBuffer& request, grpc::ByteBuffer& response);

}  // namespace QosAgent::Gnmi
