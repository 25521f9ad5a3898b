#include "agent/gnmi/rpc/Server.h"

#include <gnmi.grpc.pb.h>
#include <grpc/support/log.h>
#include <grpcpp/ext/proto_server_reflection_plugin.h>
#include <grpcpp/grpcpp.h>
#include <grpcpp/health_check_service_interface.h>

#include <chrono>
#include <utility>

#include "agent/gnmi/rpc/Refusing.h"
#include "agent/gnmi/rpc/SubscribeCall.h"
#include "agent/gnmi/rpc/UnaryCalls.h"

namespace QosAgent::Gnmi {

namespace {

constexpr int kMostRequestBytes = 4 << 20;
constexpr auto kStopTime = std::chrono::milliseconds(400);

using Raw = gnmi::gNMI::WithRawCallbackMethod_Capabilities<
    gnmi::gNMI::WithRawCallbackMethod_Get<gnmi::gNMI::WithRawCallbackMethod_Set<
        gnmi::gNMI::WithRawCallbackMethod_Subscribe<gnmi::gNMI::Service>>>>;

/// Takes messages as bytes: whether a client may Set is known before its request is read, and what
/// several streams get is serialised once.
class Methods final : public Raw {
public:
    explicit Methods(CallContext server) : server_(server) {}

    grpc::ServerUnaryReactor* Capabilities(grpc::CallbackServerContext* context,
                                           const grpc::ByteBuffer* request,
                                           grpc::ByteBuffer* response) override {
        return beginCapabilities(*context, server_, *request, *response);
    }
    grpc::ServerUnaryReactor* Get(grpc::CallbackServerContext* context,
                                  const grpc::ByteBuffer* request,
                                  grpc::ByteBuffer* response) override {
        return beginGet(*context, server_, *request, *response);
    }
    grpc::ServerUnaryReactor* Set(grpc::CallbackServerContext* context,
                                  const grpc::ByteBuffer* request,
                                  grpc::ByteBuffer* response) override {
        return beginSet(*context, server_, *request, *response);
    }
    grpc::ServerBidiReactor<grpc::ByteBuffer, grpc::ByteBuffer>* Subscribe(
        grpc::CallbackServerContext* context) override {
        return SubscribeCall::begin(*context, server_.publisher, server_.calls);
    }

private:
    CallContext server_;
};

void limit(grpc::ServerBuilder& builder) {
    builder.SetMaxReceiveMessageSize(kMostRequestBytes);
    builder.SetMaxSendMessageSize(-1);
    // One more than is allowed, so that a client is told instead of kept waiting.
    builder.AddChannelArgument(GRPC_ARG_MAX_CONCURRENT_STREAMS,
                               static_cast<int>(Calls::kMostOfConnection) + 1);
    builder.AddChannelArgument(GRPC_ARG_SERVER_HANDSHAKE_TIMEOUT_MS, 10'000);
    builder.AddChannelArgument(GRPC_ARG_MAX_CONNECTION_IDLE_MS, 600'000);
    // A client that vanished is noticed within two minutes; clients may ask as often themselves.
    builder.AddChannelArgument(GRPC_ARG_KEEPALIVE_TIME_MS, 60'000);
    builder.AddChannelArgument(GRPC_ARG_KEEPALIVE_TIMEOUT_MS, 20'000);
    builder.AddChannelArgument(GRPC_ARG_HTTP2_MIN_RECV_PING_INTERVAL_WITHOUT_DATA_MS, 5'000);
}

using ConnectionAcceptor = std::unique_ptr<grpc::experimental::ExternalConnectionAcceptor>;

Listener::Accept handOver(const ConnectionAcceptor& acceptor) {
    return [&acceptor](int descriptor) {
        grpc::experimental::ExternalConnectionAcceptor::NewConnectionParameters connection;
        connection.fd = descriptor;
        acceptor->HandleNewConnection(&connection);
    };
}

ConnectionAcceptor acceptorOf(grpc::ServerBuilder& builder,
                              const std::shared_ptr<grpc::ServerCredentials>& credentials) {
    using Type = grpc::ServerBuilder::experimental_type::ExternalConnectionType;
    return builder.experimental().AddExternalConnectionAcceptor(Type::FROM_FD, credentials);
}

void prepareOnce() {
    [[maybe_unused]] static const bool isPrepared = [] {
        // Clients learn of faults by statuses; standard error has the program's own lines only.
        gpr_set_log_function([](gpr_log_func_args*) {});
        grpc::EnableDefaultHealthCheckService(true);
        grpc::reflection::InitProtoReflectionServerBuilderPlugin();
        return true;
    }();
}

}  // namespace

struct Server::Running {
    Running(Service& service, Writers allowed)
        : writers(std::move(allowed)),
          publisher(service),
          methods({service, publisher, calls, writers}) {}

    Writers writers;
    Calls calls;
    Publisher publisher;
    Methods methods;
    RefusingMethods refusing;
    ConnectionAcceptor acceptor;
    ConnectionAcceptor refusingAcceptor;
    std::unique_ptr<grpc::Server> server;
    std::unique_ptr<grpc::Server> refusingServer;
    std::unique_ptr<Listener> listener;
};

Server::Server(ServerOptions options) : options_(std::move(options)) {}

std::variant<std::unique_ptr<Server>, std::string> Server::open(Service& service,
                                                                const ServerOptions& options) {
    std::unique_ptr<Server> server(new Server(options));
    if (!options.isInsecure) {
        auto files = readTlsFiles(options.tls);
        if (auto* why = std::get_if<std::string>(&files)) return std::move(*why);
        server->identity_.emplace(std::get<TlsFiles>(std::move(files)));
    }
    auto socket = ListeningSocket::open(options.address);
    if (auto* why = std::get_if<std::string>(&socket)) return std::move(*why);
    auto& listening = std::get<ListeningSocket>(socket);
    if (options.isInsecure && listening.reach() == ListeningSocket::Reach::network)
        return options.address + ": --gnmi-insecure is for loopback and unix: only";
    server->run(service, std::move(listening));
    return server;
}

void Server::run(Service& service, ListeningSocket socket) {
    prepareOnce();
    address_ = socket.address();
    running_ = std::make_unique<Running>(
        service, options_.isInsecure ? Writers::everybody() : Writers::named(options_.writers));
    const auto credentials = [this] {
        return options_.isInsecure ? grpc::InsecureServerCredentials() : identity_->credentials();
    };

    grpc::ServerBuilder builder;
    limit(builder);
    builder.RegisterService(&running_->methods);
    running_->acceptor = acceptorOf(builder, credentials());
    running_->server = builder.BuildAndStart();

    grpc::ServerBuilder refusing;
    limitRefusing(refusing);
    refusing.RegisterCallbackGenericService(&running_->refusing);
    running_->refusingAcceptor = acceptorOf(refusing, credentials());
    running_->refusingServer = refusing.BuildAndStart();

    running_->listener = std::make_unique<Listener>(std::move(socket), handOver(running_->acceptor),
                                                    handOver(running_->refusingAcceptor));
}

Server::~Server() {
    if (running_ == nullptr) return;
    running_->listener.reset();
    running_->calls.stop();
    const auto deadline = std::chrono::system_clock::now() + kStopTime;
    running_->refusingServer->Shutdown(std::chrono::system_clock::now());
    running_->server->Shutdown(deadline);
    running_->calls.waitForEnd();
}

std::string Server::reload() {
    if (!identity_) return {};
    auto files = readTlsFiles(options_.tls);
    if (auto* why = std::get_if<std::string>(&files)) return std::move(*why);
    identity_->replace(std::get<TlsFiles>(std::move(files)));
    return {};
}

}  // namespace QosAgent::Gnmi
