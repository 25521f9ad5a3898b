#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "agent/host/File.h"
#include "agent/loop/Loop.h"
#include "agent/service/Service.h"
#include "agent/streams/AnsweredLine.h"
#include "agent/streams/LineBuffer.h"

namespace QosAgent {

/// Reads the change streams of the command line on a loop, one after the other, and submits their
/// lines one at a time: each when the one before is applied.
class InputStreams {
public:
    struct Handlers {
        /// A line was answered. Returns whether to go on.
        std::function<bool(const AnsweredLine& line)> answered;
        /// A stream cannot be opened or read; none is read any more.
        std::function<void(const std::string& stream, int error)> failed;
    };

    /// Loop and service must outlive the object, and it the requests that it submitted.
    InputStreams(std::vector<std::string> names, Loop& loop, Service& service, Handlers handlers);

    /// Begins with the first stream. To be called once.
    void start() { openNext(); }

private:
    void openNext();
    void read();
    void submitNext();
    void submit();
    void applied(const Answer& answer);
    void answered(const AnsweredLine& line);
    void close();

    std::vector<std::string> names_;
    std::size_t next_ = 0;  ///< of the names; the one before is open
    Loop& loop_;
    Service& service_;
    Handlers handlers_;
    std::optional<File> file_;
    std::optional<LineBuffer> lines_;
    Loop::WatchPtr watch_;
    bool isAtEnd_ = false;
    bool isHalted_ = false;  ///< until the refusal of a line is answered
};

}  // namespace QosAgent
