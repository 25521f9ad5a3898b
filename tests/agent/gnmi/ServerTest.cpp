#include <gmock/gmock.h>
#include <grpcpp/health_check_service_interface.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <future>

#include "agent/gnmi/rpc/Server.h"
#include "tests/agent/gnmi/Client.h"
#include "tests/agent/gnmi/ToyService.h"
#include "tests/agent/support/TemporaryFolder.h"

namespace QosAgent::Gnmi {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kAll = "subscribe { subscription { path { elem { name: 'qos' } } } }";

class ServerTest : public testing::Test {
protected:
    ServerTest() { service.update(tree, {"classifier/c/state"}); }

    std::unique_ptr<Server> open(const std::string& address = "127.0.0.1:0") {
        ServerOptions options;
        options.address = address;
        options.isInsecure = true;
        auto opened = Server::open(service, options);
        if (auto* why = std::get_if<std::string>(&opened)) throw std::runtime_error(*why);
        return std::get<std::unique_ptr<Server>>(std::move(opened));
    }
    std::string whyNot(const std::string& address) {
        ServerOptions options;
        options.address = address;
        options.isInsecure = true;
        const auto opened = Server::open(service, options);
        const auto* why = std::get_if<std::string>(&opened);
        return why == nullptr ? "" : *why;
    }
    std::unique_ptr<Stub> connect(const Server& server) {
        return gnmi::gNMI::NewStub(channelTo(server.address()));
    }
    grpc::Status statusOfStream(const std::vector<std::string>& requests) {
        const auto server = open();
        const auto stub = connect(*server);
        ClientStream stream(*stub, requests.front());
        for (std::size_t at = 1; at < requests.size(); ++at)
            stream.send(requests[at]);
        return stream.finish();
    }

    TreeBuilder tree = TreeBuilder().classifier("c");
    ToyService service;
};

TEST_F(ServerTest, answersGetAndCapabilities) {
    const auto server = open();
    const auto stub = connect(*server);
    gnmi::GetResponse response;
    EXPECT_TRUE(get(*stub, "path { } type: STATE", response).ok());
    EXPECT_EQ(response.notification(0).update(0).val().json_val(),
              R"({"qos":{"classifiers":{"classifier":[{"state":{"name":"c","type":"IPV4"}}]}}})");
    EXPECT_EQ(get(*stub, "path { elem { name: 'x' } }", response).error_code(),
              grpc::StatusCode::UNIMPLEMENTED);
    grpc::ClientContext context;
    gnmi::CapabilityResponse capabilities;
    EXPECT_TRUE(stub->Capabilities(&context, {}, &capabilities).ok());
    EXPECT_EQ(capabilities.gnmi_version(), "0.10.0");
}

TEST_F(ServerTest, submitsASetAsOneLineAndAnswersWhenItIsApplied) {
    const auto server = open();
    const auto stub = connect(*server);
    EXPECT_TRUE(set(*stub, "delete { elem { name: 'qos' } }").ok());
    EXPECT_THAT(service.lines(), ElementsAre(R"({"configure":[{"delete":"/qos"}]})"));
    EXPECT_TRUE(set(*stub, "").ok());
    EXPECT_EQ(service.lines().size(), 1u);
}

TEST_F(ServerTest, namesPathAndReasonOfARefusedSet) {
    service.onSubmit = [](const Request&, const Service::Done& done) {
        Answer answer;
        answer.refused = Remark{1, "is still referred to", 1};
        done(answer);
    };
    const auto server = open();
    const auto status = set(*connect(*server),
                            "delete { elem { name: 'qos' } } delete { elem { name: 'qos' } elem { "
                            "name: 'queues' } }");
    EXPECT_EQ(status.error_code(), grpc::StatusCode::INVALID_ARGUMENT);
    EXPECT_EQ(status.error_message(), "/qos/queues: is still referred to");
}

TEST_F(ServerTest, answersASetThatWasNeverTriedAsUnavailable) {
    service.onSubmit = [](const Request&, const Service::Done& done) {
        Answer answer;
        answer.isBusy = true;
        done(answer);
    };
    const auto server = open();
    EXPECT_EQ(set(*connect(*server), "delete { elem { name: 'qos' } }").error_code(),
              grpc::StatusCode::UNAVAILABLE);
}

TEST_F(ServerTest, streamsValuesSyncAndChanges) {
    const auto server = open();
    const auto stub = connect(*server);
    ClientStream stream(*stub, kAll);
    EXPECT_THAT(stream.next(), ElementsAre("name=\"c\"", "type=\"IPV4\""));
    EXPECT_THAT(stream.next(), ElementsAre("sync"));
    service.update(tree.term("c", term("t", 46)), {"classifier/c/terms/term/t"});
    EXPECT_THAT(stream.next(), ElementsAre("id=\"t\"", "dscp=46"));
    service.remove(tree.without("classifier/c"), {"classifier/c"});
    EXPECT_THAT(stream.next(), ElementsAre("-classifier"));
}

TEST_F(ServerTest, goesOnWhenAClientHasClosedItsSide) {
    const auto server = open();
    const auto stub = connect(*server);
    ClientStream stream(*stub, kAll);
    stream.halfClose();
    stream.next();
    EXPECT_THAT(stream.next(), ElementsAre("sync"));
    service.update(tree.classifier("c", "IPV6"), {"classifier/c/state"});
    EXPECT_THAT(stream.next(), ElementsAre("type=\"IPV6\""));
}

TEST_F(ServerTest, endsOnceAfterTheSync) {
    const auto server = open();
    const auto stub = connect(*server);
    ClientStream stream(*stub,
                        "subscribe { mode: ONCE subscription { path { elem { name: 'qos' } } } }");
    stream.next();
    EXPECT_THAT(stream.next(), ElementsAre("sync"));
    EXPECT_THAT(stream.next(), ElementsAre("end"));
    EXPECT_TRUE(stream.finish().ok());
}

TEST_F(ServerTest, answersPolls) {
    const auto server = open();
    const auto stub = connect(*server);
    ClientStream stream(*stub,
                        "subscribe { mode: POLL subscription { path { elem { name: 'qos' } } } }");
    stream.next();
    EXPECT_THAT(stream.next(), ElementsAre("sync"));
    service.update(tree.classifier("c", "IPV6"), {"classifier/c/state"});
    stream.send("poll { }");
    stream.send("poll { }");
    for (int at = 0; at < 2; ++at) {
        EXPECT_THAT(stream.next(), ElementsAre("name=\"c\"", "type=\"IPV6\""));
        EXPECT_THAT(stream.next(), ElementsAre("sync"));
    }
    stream.halfClose();
    EXPECT_TRUE(stream.finish().ok());
}

TEST_F(ServerTest, endsStreamsThatBreakTheOrderOfMessages) {
    EXPECT_EQ(statusOfStream({"poll { }"}).error_code(), grpc::StatusCode::INVALID_ARGUMENT);
    EXPECT_EQ(statusOfStream({""}).error_code(), grpc::StatusCode::INVALID_ARGUMENT);
    EXPECT_EQ(statusOfStream({kAll, kAll}).error_code(), grpc::StatusCode::INVALID_ARGUMENT);
    EXPECT_EQ(statusOfStream({kAll, "poll { }"}).error_code(), grpc::StatusCode::INVALID_ARGUMENT);
    EXPECT_EQ(
        statusOfStream({"subscribe { subscription { path { elem { name: 'x' } } } }"}).error_code(),
        grpc::StatusCode::UNIMPLEMENTED);
}

TEST_F(ServerTest, refusesRequestsOfMoreThan4MiB) {
    const auto server = open();
    const auto stub = connect(*server);
    gnmi::GetRequest request;
    const auto sized = [&](std::size_t size) {
        request.mutable_prefix()->set_target("");
        const std::size_t around = request.ByteSizeLong() + 8;
        request.mutable_prefix()->set_target(std::string(size - around, 't'));
        while (request.ByteSizeLong() < size)
            *request.mutable_prefix()->mutable_target() += 't';
        while (request.ByteSizeLong() > size)
            request.mutable_prefix()->mutable_target()->pop_back();
        grpc::ClientContext context;
        gnmi::GetResponse response;
        return stub->Get(&context, request, &response).error_code();
    };
    EXPECT_EQ(sized(4 << 20), grpc::StatusCode::OK);
    EXPECT_EQ(sized((4 << 20) + 1), grpc::StatusCode::RESOURCE_EXHAUSTED);
}

TEST_F(ServerTest, takes100CallsAtOnceOnAConnection) {
    const auto server = open();
    const auto stub = connect(*server);
    std::vector<std::unique_ptr<ClientStream>> streams;
    for (int at = 0; at < 100; ++at) {
        streams.push_back(std::make_unique<ClientStream>(*stub, kAll));
        streams.back()->next();
    }
    ClientStream oneMore(*stub, kAll);
    EXPECT_EQ(oneMore.finish().error_code(), grpc::StatusCode::RESOURCE_EXHAUSTED);
    EXPECT_THAT(streams.back()->next(), ElementsAre("sync"));
    for (const auto& stream : streams)
        stream->cancel();
}

TEST_F(ServerTest, takes64Connections) {
    const auto server = open();
    std::vector<std::unique_ptr<Stub>> stubs;
    gnmi::GetResponse response;
    for (int at = 0; at < 64; ++at) {
        stubs.push_back(connect(*server));
        EXPECT_TRUE(get(*stubs.back(), "", response).ok()) << at;
    }
    EXPECT_EQ(get(*connect(*server), "", response).error_code(),
              grpc::StatusCode::RESOURCE_EXHAUSTED);
    stubs.clear();
    // A place is free again as soon as the server has seen a connection end.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!get(*connect(*server), "", response).ok())
        ASSERT_LT(std::chrono::steady_clock::now(), deadline);
}

TEST_F(ServerTest, endsEveryStreamWithAStatusWhenItStops) {
    auto server = open();
    const auto stub = connect(*server);
    std::vector<std::unique_ptr<ClientStream>> streams;
    for (int at = 0; at < 16; ++at) {
        streams.push_back(std::make_unique<ClientStream>(*stub, kAll));
        streams.back()->next();
    }
    const std::string address = server->address();
    const auto begin = std::chrono::steady_clock::now();
    server.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
    for (const auto& stream : streams)
        EXPECT_EQ(stream->finish().error_code(), grpc::StatusCode::UNAVAILABLE);
    // The address is free at once.
    EXPECT_EQ(open(address)->address(), address);
}

TEST_F(ServerTest, stopsWhileASetWaitsForItsAnswer) {
    std::promise<Service::Done> waiting;
    service.onSubmit = [&](const Request&, Service::Done done) { waiting.set_value(done); };
    auto server = open();
    const auto stub = connect(*server);
    auto status = std::async(std::launch::async,
                             [&] { return set(*stub, "delete { elem { name: 'qos' } }"); });
    const Service::Done done = waiting.get_future().get();
    server.reset();
    EXPECT_EQ(status.get().error_code(), grpc::StatusCode::UNAVAILABLE);
    done({});
}

TEST_F(ServerTest, listensOnAUnixSocketThatOnlyItsOwnerMayUse) {
    const TemporaryFolder folder;
    const std::string path = (folder.path() / "gnmi.sock").string();
    {
        const auto server = open("unix:" + path);
        struct stat status {};
        ASSERT_EQ(::stat(path.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777U, 0600U);
        gnmi::GetResponse response;
        EXPECT_TRUE(get(*connect(*server), "path { }", response).ok());
        EXPECT_THAT(whyNot("unix:" + path), HasSubstr("another program is serving it"));
    }
    EXPECT_FALSE(std::filesystem::exists(path));
    std::ofstream(path) << "no socket";
    EXPECT_THAT(whyNot("unix:" + path), HasSubstr("something else than a socket"));
}

TEST_F(ServerTest, refusesAddressesInOneLine) {
    EXPECT_THAT(whyNot("0.0.0.0:0"), HasSubstr("loopback"));
    EXPECT_THAT(whyNot("nonsense"), HasSubstr("HOST:PORT"));
    EXPECT_THAT(whyNot("127.0.0.1:99999"), HasSubstr("127.0.0.1:99999: "));
    const auto server = open();
    EXPECT_THAT(whyNot(server->address()), HasSubstr("already in use"));
    EXPECT_EQ(whyNot("[::1]:0"), "");
}

}  // namespace
}  // namespace QosAgent::Gnmi
