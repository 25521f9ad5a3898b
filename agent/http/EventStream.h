#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "agent/http/EventLog.h"
#include "agent/http/StateText.h"

namespace QosAgent::Http {

/// What one reader of the events gets, and how far it has come. The reader takes bytes when it can;
/// meanwhile nothing is kept for it but its place in the log. One that falls behind the log starts
/// over with the state as it is then.
class EventStream {
public:
    /// Goes on behind the event with this id if the log still can; otherwise begins with the state.
    /// The log must outlive the stream.
    EventStream(const EventLog& log, std::string_view lastId);

    /// Copies what is next. Returns the number of bytes; 0 if there is nothing to send now.
    std::size_t read(char* to, std::size_t size);
    /// If there is nothing else to send, the next `read` gives a comment, which shows whether the
    /// reader is still there.
    void ping() { isPinged_ = true; }
    bool hasNews() const { return !chunk_.empty() || snapshot_ || place_ != log_.last(); }
    /// How many events the reader has not been given; the state counts as none.
    std::uint64_t waiting() const { return log_.last() - place_; }

private:
    void refill();
    void beginSnapshot();

    const EventLog& log_;
    std::uint64_t place_ = 0;  ///< the last event given
    std::optional<StateText> snapshot_;
    std::string chunk_;
    std::size_t taken_ = 0;  ///< of the chunk
    bool isPinged_ = false;
};

}  // namespace QosAgent::Http
