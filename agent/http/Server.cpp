#include "agent/http/Server.h"

#include <fcntl.h>
#include <sys/socket.h>

#include <algorithm>
#include <cstdint>
#include <utility>

#include "agent/http/Sending.h"

namespace QosAgent::Http {
namespace {

/// After so long without any byte in either direction a connection is closed.
constexpr unsigned kIdleSeconds = 30;
/// So often the library runs once more in the end.
constexpr int kLastTurns = 4;
/// For the head of a request and of its answer.
constexpr std::size_t kConnectionMemory = 32 * 1024;
/// So many connections beyond those that are served are told so.
constexpr unsigned kMostRefused = 64;

}  // namespace

std::variant<std::unique_ptr<Server>, std::string> Server::open(Service& service,
                                                                const ServerOptions& options) {
    const bool isPortOnly = options.address.starts_with(':');
    auto opened =
        ListeningSocket::open(isPortOnly ? "127.0.0.1" + options.address : options.address);
    if (auto* why = std::get_if<std::string>(&opened)) return std::move(*why);
    auto& socket = std::get<ListeningSocket>(opened);
    if (socket.reach() == ListeningSocket::Reach::network && !options.isOpen)
        return options.address + ": other addresses than loopback and unix: need --http-open";
    std::unique_ptr<Server> server(new Server(service, std::move(socket), options.times));
    if (std::string why = server->start(); !why.empty()) return options.address + ": " + why;
    return server;
}

Server::Server(Service& service, ListeningSocket socket, const ServerTimes& times)
    : socket_(std::move(socket)),
      times_(times),
      inbox_(std::make_shared<Inbox>()),
      site_(service, inbox_, socket_.reach() == ListeningSocket::Reach::loopback),
      nextPing_(Clock::now() + times_.ping) {}

std::string Server::start() {
    // The library closes the one that it gets.
    const int descriptor = ::fcntl(socket_.descriptor(), F_DUPFD_CLOEXEC, 0);
    daemon_ = MHD_start_daemon(
        MHD_USE_EPOLL | MHD_ALLOW_SUSPEND_RESUME, 0, nullptr, nullptr, handle, this,
        MHD_OPTION_LISTEN_SOCKET, descriptor, MHD_OPTION_CONNECTION_LIMIT,
        static_cast<unsigned>(kMostConnections) + kMostRefused, MHD_OPTION_CONNECTION_MEMORY_LIMIT,
        kConnectionMemory, MHD_OPTION_CONNECTION_TIMEOUT, kIdleSeconds,
        MHD_OPTION_STRICT_FOR_CLIENT, 1, MHD_OPTION_NOTIFY_CONNECTION, noteConnection, this,
        MHD_OPTION_NOTIFY_COMPLETED, noteEnd, this, MHD_OPTION_END);
    if (daemon_ == nullptr) return "HTTP cannot be served";
    thread_ = std::thread([this] { run(); });
    return {};
}

Server::~Server() {
    if (daemon_ == nullptr) return;
    inbox_->post([this] { isStopping_ = true; });
    thread_.join();
}

void Server::run() {
    while (!isStopping_) {
        wait();
        inbox_->run();
        if (Clock::now() >= nextPing_) {
            site_.events().ping();
            nextPing_ = Clock::now() + times_.ping;
        }
        closeLate();
        MHD_run(daemon_);
    }
    close();
}

/// Until something is to be done: by a client, by another thread, or because it is time.
void Server::wait() {
    const auto* info = MHD_get_daemon_info(daemon_, MHD_DAEMON_INFO_EPOLL_FD);
    polled_ = {{info->epoll_fd, POLLIN, 0}, {inbox_->descriptor(), POLLIN, 0}};
    // The library does not notice that a client is gone while the connection rests.
    for (const Connection& connection : connections_)
        if (connection.source != nullptr) polled_.push_back({connection.descriptor, POLLRDHUP, 0});
    if (::poll(polled_.data(), polled_.size(), static_cast<int>(patience())) > 0) endAbandoned();
}

/// Ends what is sent without an end to clients who have closed their side.
void Server::endAbandoned() {
    for (std::size_t at = 2; at < polled_.size(); ++at) {
        if (polled_[at].revents == 0) continue;
        const auto is = [&](const Connection& each) { return each.descriptor == polled_[at].fd; };
        std::exchange(std::ranges::find_if(connections_, is)->source, nullptr)->end();
    }
}

/// In milliseconds; -1 if there is nothing to wait for but others.
std::int64_t Server::patience() const {
    std::int64_t time = -1;
    if (MHD_UNSIGNED_LONG_LONG most = 0; MHD_get_timeout(daemon_, &most) == MHD_YES)
        time = static_cast<std::int64_t>(std::min<MHD_UNSIGNED_LONG_LONG>(most, 1'000'000));
    if (const auto due = nextDue()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(*due - Clock::now()).count();
        time = std::max<std::int64_t>(time < 0 ? left : std::min(time, left), 0);
    }
    return time;
}

/// With nobody connected, and nothing to do, the thread sleeps.
std::optional<Server::Clock::time_point> Server::nextDue() const {
    std::optional<Clock::time_point> due;
    if (site_.hasReaders()) due = nextPing_;
    for (const Connection& connection : connections_)
        if (connection.deadline && (!due || *connection.deadline < *due)) due = connection.deadline;
    return due;
}

void Server::closeLate() {
    const auto now = Clock::now();
    for (Connection& connection : connections_) {
        if (!connection.deadline || *connection.deadline > now) continue;
        // The library then notices that it is closed.
        ::shutdown(connection.descriptor, SHUT_RDWR);
        connection.deadline.reset();
    }
}

void Server::close() {
    for (const ExchangePtr& exchange : waiting_)
        exchange->answer(busyReply("the service is stopping"));
    site_.events().end();
    // Whoever was resting has to be resumed, and has a chance to be told.
    for (int turn = 0; turn < kLastTurns; ++turn)
        MHD_run(daemon_);
    MHD_stop_daemon(daemon_);
}

void Server::noteConnection(void* cls, MHD_Connection* connection, void** context,
                            MHD_ConnectionNotificationCode code) {
    auto& server = *static_cast<Server*>(cls);
    if (code == MHD_CONNECTION_NOTIFY_STARTED) {
        const auto* info = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD);
        const bool isTooMany = server.connections_.size() >= kMostConnections;
        server.connections_.push_back(
            {info->connect_fd, isTooMany, Clock::now() + server.times_.request, nullptr, {}});
        server.connections_.back().place = std::prev(server.connections_.end());
        *context = &server.connections_.back();
    } else {
        server.connections_.erase(static_cast<Connection*>(*context)->place);
    }
    server.site_.readings().connections = server.connections_.size();
}

Server::Connection& Server::of(MHD_Connection* connection) {
    return *static_cast<Connection*>(
        MHD_get_connection_info(connection, MHD_CONNECTION_INFO_SOCKET_CONTEXT)->socket_context);
}

/// Called for the head of a request, for each part of its content, at its end, and again when a
/// connection that rested is resumed.
MHD_Result Server::handle(void* cls, MHD_Connection* connection, const char* url,
                          const char* method, const char* /*version*/, const char* /*content*/,
                          std::size_t* contentSize, void** context) {
    auto& server = *static_cast<Server*>(cls);
    if (*context == nullptr) {
        auto* exchange = new ExchangePtr(std::make_shared<Exchange>(connection, method, url));
        *context = exchange;
        if (!(*exchange)->announcesTooMuch()) return MHD_YES;
        return server.send(connection, textReply(413, "a request has no content here"));
    }
    const auto& exchange = *static_cast<ExchangePtr*>(*context);
    if (*contentSize == 0) return server.proceed(exchange, connection);
    const bool isTaken = exchange->takeContent(std::exchange(*contentSize, 0));
    return isTaken ? MHD_YES : MHD_NO;
}

MHD_Result Server::proceed(const ExchangePtr& exchange, MHD_Connection* connection) {
    const bool isNew = waiting_.erase(exchange) == 0;
    if (isNew && of(connection).isTooMany)
        exchange->answer(busyReply("at most 256 connections are served"));
    else if (isNew && waitingBytes_ > kMostWaitingBytes)
        exchange->answer(busyReply("too many answers are waiting to be taken"));
    else if (isNew)
        site_.serve(exchange);
    if (auto reply = exchange->takeReply()) {
        reply->isHeadOnly = exchange->method() == "HEAD";
        return send(connection, std::move(*reply));
    }
    of(connection).deadline.reset();
    waiting_.insert(exchange);
    exchange->suspend();
    return MHD_YES;
}

MHD_Result Server::send(MHD_Connection* connection, Reply reply) {
    Connection& state = of(connection);
    state.deadline.reset();
    state.source = reply.source.get();
    if (state.source == nullptr) state.deadline = Clock::now() + times_.answer;
    if (state.isTooMany) reply.headers.emplace_back("Connection", "close");
    ++site_.readings().answers[reply.status];
    return queue(connection, std::move(reply), waitingBytes_);
}

void Server::noteEnd(void* cls, MHD_Connection* connection, void** context,
                     MHD_RequestTerminationCode /*code*/) {
    auto& server = *static_cast<Server*>(cls);
    const std::unique_ptr<ExchangePtr> exchange(static_cast<ExchangePtr*>(*context));
    *context = nullptr;
    if (exchange) server.waiting_.erase(*exchange);
    of(connection).source = nullptr;
    of(connection).deadline = Clock::now() + server.times_.request;
}

}  // namespace QosAgent::Http
