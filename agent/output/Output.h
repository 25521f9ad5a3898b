#pragma once

#include <string>
#include <string_view>

namespace QosAgent {

/// What the program says on a stream of the process: standard output, standard error or a trace
/// file. Nothing is kept back, so that lines from several places stand in the order in which they
/// were written.
class Output {
public:
    /// Closes nothing.
    explicit Output(int fd) : fd_(fd) {}
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    /// Writes the text and a line end in one go. Nothing happens after a write has failed.
    void line(std::string_view text);
    /// Why a write failed; empty while none has.
    const std::string& fault() const { return fault_; }

private:
    int fd_;
    std::string fault_;
    std::string buffer_;
};

}  // namespace QosAgent
