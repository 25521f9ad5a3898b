#pragma once

#include <string>
#include <string_view>

namespace QosAgent {

/// Writes lines to a stream of the process: standard output, standard error or a trace file. Does
/// not buffer, so that lines of several writers to one terminal or file appear in the order in
/// which they were written.
class Output {
public:
    /// Does not close the descriptor.
    explicit Output(int fd) : fd_(fd) {}
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    /// Writes the text and a line end by one call. Blocks while the stream has no room. No-op after
    /// a failed write.
    void line(std::string_view text);
    /// Returns why a write failed; empty if none failed.
    const std::string& fault() const { return fault_; }
    /// Returns true if a write failed because the reader closed the stream.
    bool isReaderGone() const { return isReaderGone_; }

private:
    /// Handles the `errno` of a failed write.
    void recover(int error);

    int fd_;
    std::string fault_;
    bool isReaderGone_ = false;
    std::string buffer_;
};

}  // namespace QosAgent
