#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "agent/http/Server.h"

namespace QosAgent::Http {
namespace {

using namespace std::chrono_literals;

/// A core in which nothing changes, and which answers as a test says.
class ToyService final : public Service {
public:
    std::function<void(Done)> onSubmit = [](const Done& done) {
        Answer answer;
        answer.lines = {"{}"};
        done(answer);
    };
    Statistics figures;

    void submit(Request, Done done) override { onSubmit(std::move(done)); }
    Snapshot snapshot() override { return {}; }
    std::unique_ptr<Subscription> subscribe(std::function<void()>) override {
        return std::make_unique<ToySubscription>();
    }
    void statistics(std::function<void(Statistics)> done) override { done(figures); }
    StreamCounters& grpcCounters() override { return counters_; }

private:
    class ToySubscription final : public Subscription {
    public:
        const Snapshot& start() const override { return start_; }
        std::vector<ChangeSetPtr> take() override { return {}; }

    private:
        Snapshot start_;
    };

    StreamCounters counters_;
};

/// A connection to a port of this machine.
class Client {
public:
    explicit Client(const std::string& address)
        : descriptor_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in to{};
        to.sin_family = AF_INET;
        to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        to.sin_port =
            htons(static_cast<std::uint16_t>(std::stoi(address.substr(address.rfind(':') + 1))));
        EXPECT_EQ(::connect(descriptor_, reinterpret_cast<const sockaddr*>(&to), sizeof to), 0);
    }
    ~Client() { ::close(descriptor_); }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    void send(const std::string& text) const {
        EXPECT_EQ(::send(descriptor_, text.data(), text.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(text.size()));
    }
    /// What comes until the text does, or until the end; nothing more after a minute.
    std::string until(const std::string& text) const {
        std::string all;
        char byte = 0;
        while (all.find(text) == std::string::npos) {
            pollfd readable{descriptor_, POLLIN, 0};
            if (::poll(&readable, 1, 60'000) <= 0 || ::recv(descriptor_, &byte, 1, 0) <= 0) break;
            all += byte;
        }
        return all;
    }
    /// The first line of the answer to a GET.
    std::string get(const std::string& path) const {
        send("GET " + path + " HTTP/1.1\r\nHost: localhost\r\n\r\n");
        return until("\r\n");
    }
    /// How many bytes come until the end.
    std::size_t countRest() const {
        std::vector<char> piece(1 << 16);
        std::size_t count = 0;
        for (ssize_t size = 1; size > 0;
             count += static_cast<std::size_t>(std::max<ssize_t>(size, 0)))
            size = ::recv(descriptor_, piece.data(), piece.size(), 0);
        return count;
    }
    bool isClosed() const { return until("\n").empty(); }

private:
    int descriptor_;
};

class ServerTest : public ::testing::Test {
protected:
    std::unique_ptr<Server> open(const ServerTimes& times = {}) {
        auto opened = Server::open(service, {":0", false, times});
        return std::get<std::unique_ptr<Server>>(std::move(opened));
    }

    ToyService service;
};

TEST_F(ServerTest, closesAConnectionThatSendsNoWholeRequestInTime) {
    const auto server = open({.request = 1s});
    const Client silent(server->address());
    const Client slow(server->address());
    slow.send("GET / HTTP/1.1\r\nHost: loc");
    EXPECT_TRUE(silent.isClosed());
    EXPECT_TRUE(slow.isClosed());
}

TEST_F(ServerTest, closesAConnectionThatIsKeptWithoutAnotherRequest) {
    const auto server = open({.request = 1s});
    const Client client(server->address());
    EXPECT_EQ(client.get("/healthz"), "HTTP/1.1 200 OK\r\n");
    EXPECT_TRUE(client.until("never").ends_with("\r\n\r\nok\n"));
}

TEST_F(ServerTest, closesAConnectionThatDoesNotTakeItsAnswerInTime) {
    constexpr std::size_t size = std::size_t{64} << 20;
    service.onSubmit = [](const Service::Done& done) {
        Answer answer;
        answer.lines = {std::string(size, 'x')};
        done(answer);
    };
    const auto server = open({.answer = 100ms});
    const Client client(server->address());
    EXPECT_EQ(client.get("/api/state"), "HTTP/1.1 200 OK\r\n");
    // This connection alone is open then.
    const std::string one = "qos_agent_http_connections 1\n";
    std::string metrics;
    do {
        const Client other(server->address());
        other.get("/metrics");
        metrics = other.until("qos_agent_http_answers");
    } while (metrics.find(one) == std::string::npos);
    EXPECT_LT(client.countRest(), size);
}

TEST_F(ServerTest, showsReadersOfEventsThatItIsThere) {
    const auto server = open({.request = 1s, .answer = 1ms, .ping = 500ms});
    const Client client(server->address());
    client.get("/api/events");
    // The state comes in pieces, which the encoding of HTTP tells apart.
    EXPECT_TRUE(client.until("\n\n").ends_with("{}\n\n"));
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(client.until(":\n\n").ends_with(":\n\n"));
}

TEST_F(ServerTest, isUnhealthyWhileTheStoreIsAway) {
    service.figures.store.emplace().isAway = true;
    const auto server = open();
    EXPECT_EQ(Client(server->address()).get("/healthz"), "HTTP/1.1 503 Service Unavailable\r\n");
}

TEST_F(ServerTest, tellsThatTheServiceIsBusy) {
    service.onSubmit = [](const Service::Done& done) {
        Answer answer;
        answer.isBusy = true;
        answer.refused = Remark{1, "too much"};
        done(answer);
    };
    const auto server = open();
    EXPECT_EQ(Client(server->address()).get("/api/state"), "HTTP/1.1 503 Service Unavailable\r\n");
}

TEST_F(ServerTest, endsWhileRequestsWaitAndIsNotDisturbedByTheirAnswers) {
    std::vector<Service::Done> waiting;
    std::mutex mutex;
    service.onSubmit = [&](Service::Done done) {
        const std::lock_guard lock(mutex);
        waiting.push_back(std::move(done));
    };
    auto server = open();
    const Client gone(server->address());
    const Client client(server->address());
    for (const Client* each : {&gone, &client})
        each->send("GET /api/state HTTP/1.1\r\nHost: localhost\r\n\r\n");
    const auto count = [&] {
        const std::lock_guard lock(mutex);
        return waiting.size();
    };
    while (count() < 2)
        ::poll(nullptr, 0, 1);
    server.reset();
    // Those that waited are not asked again.
    EXPECT_EQ(waiting.size(), 2u);
    for (const auto& done : waiting)
        done({});
}

}  // namespace
}  // namespace QosAgent::Http
