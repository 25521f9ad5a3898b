#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace QosAgent::Http {

/// Text that comes piece by piece for as long as the reader stays. Belongs to the door's thread.
class Source {
public:
    virtual ~Source() = default;
    /// Copies at most `size` bytes. Returns how many; 0 if there are none now.
    virtual std::size_t read(char* to, std::size_t size) = 0;
    /// Nothing follows any more.
    virtual bool isEnded() const = 0;
    /// Ends it, whatever would follow, and wakes whom it was to wake.
    virtual void end() = 0;
    /// There is nothing now: the source is to call `wake` once when there is.
    virtual void rest(std::function<void()> wake) = 0;
};

/// The answer to a request, whole. What all answers have in common is added when it is sent.
struct Reply {
    unsigned status = 200;
    std::string type = "text/plain; charset=utf-8";
    std::string body;
    std::unique_ptr<Source> source = {};  ///< in place of `body`, if there is one
    bool isHeadOnly = false;              ///< of a HEAD request
    /// Name and value; `Cache-Control: no-store` is added where there is no `Cache-Control`.
    std::vector<std::pair<std::string, std::string>> headers = {};
};

inline Reply textReply(unsigned status, const std::string& line) {
    Reply reply;
    reply.status = status;
    reply.body = line + '\n';
    return reply;
}

/// The service has no room for the request now.
inline Reply busyReply(const std::string& line) {
    Reply reply = textReply(503, line);
    reply.headers.emplace_back("Retry-After", "1");
    return reply;
}

}  // namespace QosAgent::Http
