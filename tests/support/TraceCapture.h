#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace TestSupport {

/// While it exists, trace lines of the named handles (`*`: all) are enabled up to `level` and
/// collected here; afterwards all are disabled and lines go nowhere.
class TraceCapture {
public:
    explicit TraceCapture(std::string_view handle = "*", unsigned level = 9);
    ~TraceCapture();
    TraceCapture(const TraceCapture&) = delete;
    TraceCapture& operator=(const TraceCapture&) = delete;

    /// The lines as they came.
    const std::vector<std::string>& rawLines() const noexcept { return lines_; }
    /// The lines without their timestamps, each address written `0x`.
    std::vector<std::string> lines() const;

private:
    std::vector<std::string> lines_;
};

}  // namespace TestSupport
