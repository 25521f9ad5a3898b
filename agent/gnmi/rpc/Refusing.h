#pragma once

#include <grpcpp/generic/async_generic_service.h>
#include <grpcpp/server_builder.h>

namespace QosAgent::Gnmi {

/// Answers every call of a connection that is one too many, so that its client learns why.
class RefusingMethods final : public grpc::CallbackGenericService {
public:
    grpc::ServerGenericBidiReactor* CreateReactor(
        grpc::GenericCallbackServerContext* context) override;
};

/// Has such connections end soon.
void limitRefusing(grpc::ServerBuilder& builder);

}  // namespace QosAgent::Gnmi
