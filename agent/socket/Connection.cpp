#include "agent/socket/Connection.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "agent/json/JsonReader.h"
#include "agent/socket/AnswerLines.h"
#include "agent/socket/Unread.h"

namespace QosAgent {
namespace {

constexpr std::size_t kPieceBytes = std::size_t{16} << 10;

/// Whether the client has closed both its sides.
bool isHungUp(int fd) {
    pollfd asked{fd, 0, 0};
    return ::poll(&asked, 1, 0) > 0;
}

}  // namespace

Connection::Connection(ConnectionHost& host, int fd)
    : host_(host), fd_(fd), lines_(Limits{}.lineBytes, kPieceBytes), outbox_(fd) {}

Connection::~Connection() {
    followIs(false);
    host_.heldBytes -= heldBytes_;
    watch_.reset();
    ::close(fd_);
}

void Connection::start() {
    watch_ = host_.loop.watch(fd_, true, false, [this] { ready(); });
}

void Connection::ready() {
    const std::shared_ptr<Connection> self = shared_from_this();
    if (isWaiting_ || isAtEnd_) {
        if (isHungUp(fd_)) leave();
    } else if (!read()) {
        return;
    }
    goOn();
}

bool Connection::read() {
    const auto room = lines_.room();
    const ssize_t count = ::recv(fd_, room.data(), room.size(), 0);
    if (count < 0) {
        if (errno != EAGAIN && errno != EINTR) end();
        return !isEnded_;
    }
    isAtEnd_ = count == 0;
    lines_.filled(static_cast<std::size_t>(count));
    submitNext();
    return !isEnded_;
}

void Connection::submitNext() {
    const bool isLine = lines_.next() || (isAtEnd_ && lines_.last());
    host_.heldBytes += lines_.heldBytes() - std::exchange(heldBytes_, lines_.heldBytes());
    if (host_.heldBytes > ConnectionHost::kMostHeldBytes)
        return endWith("too much memory is taken by lines that have not ended");
    if (!isLine) return;
    isWaiting_ = true;
    Request request{lines_.take(), "socket"};
    request.applied = [weak = weak_from_this()](const Answer& answer) {
        if (const auto self = weak.lock()) self->applied(answer);
    };
    const auto done = [weak = weak_from_this(), line = lines_.number()](Answer answer) {
        if (const auto self = weak.lock()) self->answered(line, std::move(answer));
    };
    host_.service.submit(std::move(request), done);
}

void Connection::applied(const Answer& answer) {
    isWaiting_ = false;
    ++applied_;
    if (isEnded_) return;
    if (answer.follows && !isGone_) followIs(*answer.follows);
    submitNext();
    if (!isEnded_) goOn();
}

void Connection::answered(std::size_t line, Answer answer) {
    ++answered_;
    if (isEnded_) return;
    if (!isGone_ && !addAnswer(line, answer)) return end();
    if (answer.isBusy) return endWith(nullptr);
    addHeldChanges();
    goOn();
}

bool Connection::addAnswer(std::size_t line, Answer& answer) {
    for (const Remark& warning : answer.warnings)
        if (!outbox_.addAnswer(warningLine(line, warning))) return false;
    for (std::string& text : answer.lines)
        if (!outbox_.addAnswer(std::move(text += '\n'))) return false;
    return !answer.refused || outbox_.addAnswer(refusedLine(line, *answer.refused));
}

void Connection::followIs(bool follows) {
    if (std::exchange(follows_, follows) == follows) return;
    if (follows) {
        host_.feed.keepState();
        host_.feed.listenerIs(*this);
    } else {
        host_.feed.listenerDel(*this);
        host_.feed.releaseState();
    }
}

void Connection::changed(const Change& change) {
    const bool wasEmpty = outbox_.isEmpty();
    const bool isCreation =
        !change.isDelete() && !host_.feed.state().holds(host_.feed.below(change));
    held_.push_back({applied_, change.shared(), isCreation});
    addHeldChanges();
    // It is written when the request that changes this is over.
    if (wasEmpty && watch_) watch_->interestIs(!isWaiting_ && !isAtEnd_, true);
}

void Connection::addHeldChanges() {
    while (!held_.empty() && held_.front().behind <= answered_) {
        outbox_.addChange(held_.front().change, held_.front().isCreation);
        held_.pop_front();
    }
}

void Connection::goOn() {
    if (!isGone_ && !outbox_.flush()) leave();
    if (isOver()) return end();
    // The descriptor of a client that has gone is ready for ever.
    if (isGone_ && (isWaiting_ || applied_ != answered_)) return;
    if (!watch_) start();
    watch_->interestIs(!isWaiting_ && !isAtEnd_, !isGone_ && !outbox_.isEmpty());
}

/// The client takes nothing more. What it sent before is applied all the same.
void Connection::leave() {
    isGone_ = true;
    followIs(false);
    watch_.reset();
}

/// A client that has said all it wants to say, and was told all there is to tell.
bool Connection::isOver() const {
    return isAtEnd_ && !isWaiting_ && applied_ == answered_ && (isGone_ || outbox_.isEmpty());
}

/// One line that says why, if the client takes it at once; null: it was told already.
void Connection::endWith(const char* why) {
    if (why != nullptr) outbox_.addAnswer(refusedLine(lines_.number() + 1, {1, why}));
    outbox_.flush();
    passOverUnread(fd_);
    end();
}

void Connection::end() {
    if (std::exchange(isEnded_, true)) return;
    watch_.reset();
    followIs(false);
    host_.ended(*this);
}

}  // namespace QosAgent
