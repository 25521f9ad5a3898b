#include "agent/http/EventStream.h"

#include <algorithm>

namespace QosAgent::Http {
namespace {

/// Of so many bytes a chunk is made at least, where there are as many.
constexpr std::size_t kChunk = 32 * 1024;

}  // namespace

EventStream::EventStream(const EventLog& log, std::string_view lastId) : log_(log) {
    const auto number = log.numberIn(lastId);
    if (number && log.isKeptAfter(*number))
        place_ = *number;
    else
        beginSnapshot();
}

void EventStream::beginSnapshot() {
    place_ = log_.last();
    snapshot_.emplace(log_.state());
    chunk_ += log_.snapshotHead();
}

std::size_t EventStream::read(char* to, std::size_t size) {
    if (taken_ == chunk_.size()) {
        chunk_.clear();
        taken_ = 0;
        refill();
    }
    const std::size_t count = chunk_.copy(to, size, taken_);
    taken_ += count;
    if (taken_ == chunk_.size()) {
        chunk_.clear();
        taken_ = 0;
    }
    return count;
}

void EventStream::refill() {
    if (!snapshot_ && !log_.isKeptAfter(place_)) beginSnapshot();
    while (snapshot_ && chunk_.size() < kChunk) {
        if (snapshot_->next(chunk_)) continue;
        snapshot_.reset();
        chunk_ += "\n\n";
    }
    while (!snapshot_ && place_ < log_.last() && log_.isKeptAfter(place_) && chunk_.size() < kChunk)
        chunk_ += log_.event(++place_);
    if (chunk_.empty() && isPinged_) chunk_ = ":\n\n";
    isPinged_ = false;
}

}  // namespace QosAgent::Http
