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

    /// Writes the text and a line end in one go, and waits as long as there is no room for it. Has
    /// no effect after a write has failed.
    void line(std::string_view text);
    /// Why a write failed; empty while none has.
    const std::string& fault() const { return fault_; }
    /// Whether a write failed because nobody reads what is written any more.
    bool isReaderGone() const { return isReaderGone_; }

private:
    /// Copes with the `errno` of a write that failed.
    void recover(int error);

    int fd_;
    std::string fault_;
    bool isReaderGone_ = false;
    std::string buffer_;
};

}  // namespace QosAgent
