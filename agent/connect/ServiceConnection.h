#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "agent/streams/LineBuffer.h"

namespace QosAgent {

/// A connection to a service, on which one line is under way at a time.
class ServiceConnection {
public:
    /// Called for each line that the service sends.
    using Receive = std::function<void(std::string_view line)>;
    /// Told how many bytes of a line were sent.
    using Progress = std::function<void(std::size_t bytes)>;

    /// Connects to the socket at the path; `fault` says why if that fails.
    explicit ServiceConnection(const std::string& path);
    ~ServiceConnection();
    ServiceConnection(const ServiceConnection&) = delete;
    ServiceConnection& operator=(const ServiceConnection&) = delete;

    /// Why the connection cannot be used; empty while it can.
    const std::string& fault() const { return fault_; }
    /// To wait for what the service sends by itself.
    int fd() const { return fd_; }

    /// Sends a line and receives what the service sends until the line is done with. Returns false
    /// if the connection broke.
    bool exchange(std::string_view line, const Receive& receive, const Progress& progress = {});
    /// Receives what can be received without waiting for more than a part of it. Returns false if
    /// the connection broke.
    bool receive(const Receive& receive);
    /// The connection cannot be used any more; returns false.
    bool broke(std::string why);

private:
    bool send(std::string_view text, const Progress& progress);
    bool isMark(std::string_view line) const;
    std::string nextMark();

    int fd_;
    std::string fault_;
    LineBuffer lines_;
    std::string session_;  ///< tells the marks of this connection from anybody else's
    std::size_t exchanges_ = 0;
    std::string mark_;  ///< of the line under way
};

}  // namespace QosAgent
