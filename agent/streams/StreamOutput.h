#pragma once

#include <string_view>

namespace QosAgent {

/// Where the output of one change stream goes: standard output, or a client.
class StreamOutput {
public:
    virtual ~StreamOutput() = default;

    /// Writes the text, of one or several lines, and a line end.
    virtual void line(std::string_view text) = 0;
    /// From now on the output gets each published change as a line, or no more.
    virtual void followIs(bool follows) = 0;
};

}  // namespace QosAgent
