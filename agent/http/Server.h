#pragma once

#include <microhttpd.h>
#include <poll.h>

#include <chrono>
#include <cstddef>
#include <list>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#include "agent/host/ListeningSocket.h"
#include "agent/http/Exchange.h"
#include "agent/http/Inbox.h"
#include "agent/http/Site.h"
#include "agent/service/Service.h"

namespace QosAgent::Http {

/// How long clients may take.
struct ServerTimes {
    /// Until a connection has sent its next request, whole.
    std::chrono::milliseconds request = std::chrono::seconds(30);
    /// Until a client has taken an answer, whole. Events are no answer.
    std::chrono::milliseconds answer = std::chrono::seconds(300);
    /// Between two comments to readers of events, for whom there is nothing else.
    std::chrono::milliseconds ping = std::chrono::seconds(15);
};

struct ServerOptions {
    std::string address;  ///< `HOST:PORT`, `[IPV6]:PORT`, `:PORT` (loopback) or `unix:PATH`
    bool isOpen = false;  ///< may be another address than loopback or `unix:`
    ServerTimes times = {};
};

/// Serves the site over HTTP, on one thread of its own.
class Server {
public:
    /// So many connections are served; some more are told that there are too many.
    static constexpr std::size_t kMostConnections = 256;
    /// So many bytes of answers may wait to be taken. One more answer is given all the same.
    static constexpr std::size_t kMostWaitingBytes = std::size_t{256} << 20;

    /// Opens the door, or returns one line that says why that fails. The service must outlive it.
    static std::variant<std::unique_ptr<Server>, std::string> open(Service& service,
                                                                   const ServerOptions& options);
    /// Returns when the thread has ended and the address is free.
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    const std::string& address() const { return socket_.address(); }

private:
    using Clock = std::chrono::steady_clock;
    struct Connection {
        int descriptor;
        bool isTooMany;
        std::optional<Clock::time_point> deadline;  ///< when it is closed
        Source* source;                             ///< what it is being sent, if that has no end
        std::list<Connection>::iterator place;
    };

    Server(Service& service, ListeningSocket socket, const ServerTimes& times);
    std::string start();

    static void noteConnection(void* cls, MHD_Connection* connection, void** context,
                               MHD_ConnectionNotificationCode code);
    static MHD_Result handle(void* cls, MHD_Connection* connection, const char* url,
                             const char* method, const char* version, const char* content,
                             std::size_t* contentSize, void** context);
    static void noteEnd(void* cls, MHD_Connection* connection, void** context,
                        MHD_RequestTerminationCode code);

    void run();
    void wait();
    void endAbandoned();
    std::int64_t patience() const;
    void close();
    void closeLate();
    std::optional<Clock::time_point> nextDue() const;
    static Connection& of(MHD_Connection* connection);
    MHD_Result proceed(const ExchangePtr& exchange, MHD_Connection* connection);
    MHD_Result send(MHD_Connection* connection, Reply reply);

    ListeningSocket socket_;
    const ServerTimes times_;
    std::shared_ptr<Inbox> inbox_;
    Site site_;
    std::list<Connection> connections_;
    std::set<ExchangePtr> waiting_;  ///< have no answer yet
    std::vector<pollfd> polled_;     ///< of one turn
    std::size_t waitingBytes_ = 0;   ///< of answers that are being sent
    Clock::time_point nextPing_;
    bool isStopping_ = false;
    MHD_Daemon* daemon_ = nullptr;
    std::thread thread_;
};

}  // namespace QosAgent::Http
