#pragma once

#include <string_view>

namespace QosAgent {

/// The output of one change stream: standard output, or a client.
class StreamOutput {
public:
    virtual ~StreamOutput() = default;

    /// Writes the text, of one or several lines, and a line end.
    virtual void line(std::string_view text) = 0;
    /// Starts or stops writing each published change as a line.
    virtual void followIs(bool follows) = 0;
};

}  // namespace QosAgent
