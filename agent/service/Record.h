#pragma once

#include <string>
#include <string_view>

#include "agent/host/File.h"

namespace QosAgent {

/// Appends each applied line to a file, with the time and where the line came from, so that the
/// file replays as a change stream.
class Record {
public:
    /// Opens the file with mode 0600, created if absent.
    explicit Record(std::string file);

    /// `errno` if the file could not be opened; else 0.
    int error() const { return file_.error(); }
    /// Reports a write that fails on standard error, once until one succeeds again, and undoes the
    /// part that was written.
    void append(std::string_view line, std::string_view door);
    /// Opens the file anew, after it was moved away. Reports a failure and goes on with the old
    /// one.
    void reopen();

private:
    void undo(std::size_t written);

    std::string name_;
    File file_;
    bool isFailing_ = false;
};

}  // namespace QosAgent
