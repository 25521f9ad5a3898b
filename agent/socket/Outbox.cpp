#include "agent/socket/Outbox.h"

#include <sys/socket.h>
#include <sys/uio.h>

#include <array>
#include <cerrno>
#include <utility>

namespace QosAgent {
namespace {

/// As much may wait before a write is tried within a request.
constexpr std::size_t kFlushBytes = std::size_t{64} << 10;

}  // namespace

bool Outbox::addAnswer(std::string text) {
    const std::size_t first = answerSizes_.empty() ? 0 : answerSizes_.front();
    if (answerBytes_ - first > kMostAnswerBytes) return false;
    answerBytes_ += text.size();
    answerSizes_.push_back(text.size());
    entries_.push_back({std::make_shared<const std::string>(std::move(text)), nullptr});
    return true;
}

void Outbox::addChange(const ChangeLinePtr& change, bool isCreation) {
    if (isMerging_) {
        merge(change, isCreation);
        return;
    }
    entries_.push_back({Text(change, &change->text), change, isCreation});
    unflushedBytes_ += change->text.size();
    // A failed write is seen again by whoever flushes next.
    if (unflushedBytes_ > kFlushBytes) flush();
}

void Outbox::merge(const ChangeLinePtr& change, bool isCreation) {
    const bool isDelete = change->isDelete;
    const std::string& path = change->path;
    if (isDelete) {
        // What the client was never told of need not be taken back.
        const bool wasToldGone = supersede(deletes_, path, true);
        if (supersede(updates_, path, true) && !wasToldGone) return;
    } else {
        isCreation |= supersede(updates_, path, false);
    }
    entries_.push_back({Text(change, &change->text), change, isCreation});
    (isDelete ? deletes_ : updates_)[path] = std::prev(entries_.end());
}

/// Drops the entry of a path, and those below it. Returns whether the path's creation was among
/// them; of deletes, whether the path's own was.
bool Outbox::supersede(Index& index, const std::string& path, bool alsoBelow) {
    bool isOwn = false;
    if (const auto at = index.find(path); at != index.end()) {
        isOwn = at->second->isCreation || at->second->change->isDelete;
        drop(index, at);
    }
    if (!alsoBelow) return isOwn;
    const std::string below = path + '/';
    // A classifier is created with its state.
    if (const auto state = index.find(below + "state"); state != index.end())
        isOwn |= state->second->isCreation;
    for (auto at = index.lower_bound(below); at != index.end() && at->first.starts_with(below);)
        drop(index, at++);
    return isOwn;
}

void Outbox::drop(Index& index, Index::iterator at) {
    entries_.erase(at->second);
    index.erase(at);
}

bool Outbox::flush() {
    unflushedBytes_ = 0;
    while (!entries_.empty()) {
        std::array<iovec, 64> pieces{};
        std::size_t count = 0;
        std::size_t skipped = sentOfFirst_;
        for (auto at = entries_.begin(); at != entries_.end() && count < pieces.size(); ++at) {
            pieces[count++] = {const_cast<char*>(at->text->data()) + skipped,  // read only
                               at->text->size() - skipped};
            skipped = 0;
        }
        msghdr message{};
        message.msg_iov = pieces.data();
        message.msg_iovlen = count;
        const ssize_t sent = ::sendmsg(fd_, &message, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent >= 0) {
            taken(static_cast<std::size_t>(sent));
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            beginMerging();
            return true;
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

void Outbox::taken(std::size_t bytes) {
    while (!entries_.empty()) {
        const std::size_t left = entries_.front().text->size() - sentOfFirst_;
        if (bytes < left) {
            // The rest of a line that the client has the beginning of must follow.
            if (bytes > 0) unindexFirst();
            sentOfFirst_ += bytes;
            return;
        }
        bytes -= left;
        popFront();
    }
    isMerging_ = false;
}

void Outbox::popFront() {
    if (!entries_.front().change) {
        answerBytes_ -= answerSizes_.front();
        answerSizes_.pop_front();
    }
    unindexFirst();
    entries_.pop_front();
    sentOfFirst_ = 0;
}

/// The first entry is no longer merged with later ones.
void Outbox::unindexFirst() {
    const ChangeLinePtr& change = entries_.front().change;
    if (!change || !isMerging_) return;
    Index& index = change->isDelete ? deletes_ : updates_;
    const auto at = index.find(change->path);
    if (at != index.end() && at->second == entries_.begin()) index.erase(at);
}

void Outbox::beginMerging() {
    if (std::exchange(isMerging_, true)) return;
    Entries waiting = std::exchange(entries_, {});
    if (sentOfFirst_ > 0) entries_.splice(entries_.end(), waiting, waiting.begin());
    while (!waiting.empty()) {
        const Entry entry = waiting.front();
        if (entry.change) {
            waiting.pop_front();
            merge(entry.change, entry.isCreation);
        } else {
            entries_.splice(entries_.end(), waiting, waiting.begin());
        }
    }
}

}  // namespace QosAgent
