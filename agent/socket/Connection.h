#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>

#include "agent/feed/Feed.h"
#include "agent/loop/Loop.h"
#include "agent/service/Service.h"
#include "agent/socket/Outbox.h"
#include "agent/streams/LineBuffer.h"

namespace QosAgent {

class Connection;

/// What connections share.
struct ConnectionHost {
    /// Incomplete lines of all connections may hold so much memory.
    static constexpr std::size_t kMostHeldBytes = std::size_t{512} << 20;

    Loop& loop;
    Service& service;
    Feed& feed;
    std::size_t heldBytes = 0;  ///< of incomplete lines, all connections together
    /// Called when a connection is done with; it may be destroyed then, and only then.
    std::function<void(Connection&)> ended;
};

/// One client on a socket: a change stream of its own. Its lines are applied one at a time, and it
/// is read from no further meanwhile. What it does not take waits in its outbox. A line may be
/// answered later than the next one is applied; answers and followed changes keep their order.
class Connection final : public std::enable_shared_from_this<Connection>, private ChangeListener {
public:
    /// Owns the descriptor, which must not block. The host must outlive the connection.
    Connection(ConnectionHost& host, int fd);
    ~Connection() override;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Writes what the client takes at once, and ends.
    void close() { endWith(nullptr); }
    /// Begins to read. To be called once.
    void start();

private:
    void ready();
    /// Returns false if the connection has ended.
    bool read();
    void submitNext();
    void applied(const Answer& answer);
    void answered(std::size_t line, Answer answer);
    bool addAnswer(std::size_t line, Answer& answer);
    void followIs(bool follows);
    void changed(const Change& change) override;
    void addHeldChanges();
    /// Writes what the client takes, and waits for what is to happen next.
    void goOn();
    void leave();
    bool isOver() const;
    void endWith(const char* why);
    void end();

    ConnectionHost& host_;
    int fd_;
    LineBuffer lines_;
    std::size_t heldBytes_ = 0;  ///< of the host's, this connection's part
    Outbox outbox_;
    Loop::WatchPtr watch_;
    /// A change that is to be shown behind the answer to some line.
    struct HeldChange {
        std::size_t behind;  ///< lines that were applied before it
        ChangeLinePtr change;
        bool isCreation;
    };
    std::deque<HeldChange> held_;
    std::size_t applied_ = 0;   ///< lines, so far
    std::size_t answered_ = 0;  ///< lines, so far
    bool isWaiting_ = false;    ///< for a line to be applied
    bool isAtEnd_ = false;      ///< the client has closed its sending side
    bool isGone_ = false;       ///< the client reads no more
    bool isEnded_ = false;
    bool follows_ = false;
};

}  // namespace QosAgent
