#pragma once

#include <microhttpd.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "agent/http/Reply.h"

namespace QosAgent::Http {

/// A request and its answer, which may come later. Door's thread only; others hold it weakly.
class Exchange {
public:
    /// `target` is the path, or a whole URL, without the query.
    Exchange(MHD_Connection* connection, std::string_view method, std::string_view target);

    std::string_view method() const { return method_; }
    std::string_view path() const { return path_; }
    /// Whom the request is meant for: what a whole URL says, else the `Host`. Nothing if the client
    /// does not say.
    std::optional<std::string> host() const;
    /// How many `Host` headers there are.
    unsigned hosts() const;
    /// The value of the header; nothing without it, or if it is there twice.
    std::optional<std::string> header(const char* name) const;
    /// The value in the query; nothing if it is not there.
    std::optional<std::string> argument(std::string_view name) const;

    /// Whether the head of the request announces more content than a request may have.
    bool announcesTooMuch() const;
    /// Adds to the size of the request's content. Returns false if it is more than a request may
    /// have.
    bool takeContent(std::size_t size);

    /// The answer, once. Wakes the connection if it waits for it.
    void answer(Reply reply);
    /// The answer, if it is there.
    std::optional<Reply> takeReply();
    /// The connection rests until there is an answer.
    void suspend();

private:
    MHD_Connection* connection_;
    std::string method_;
    std::string path_;
    std::string authority_;  ///< of a whole URL
    std::size_t contentSize_ = 0;
    std::optional<Reply> reply_;
    bool isSuspended_ = false;
};

using ExchangePtr = std::shared_ptr<Exchange>;

}  // namespace QosAgent::Http
