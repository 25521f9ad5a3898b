#pragma once

#include <cstddef>
#include <string>

#include "agent/service/Service.h"

namespace QosAgent {

/// A line of a change stream, and its answer.
struct AnsweredLine {
    const std::string& stream;  ///< the file's name, or `-`
    bool isKept;                ///< the stream is a file, in which the user can look up the line
    std::size_t number;         ///< of the line, from 1
    const Answer& answer;
};

/// Reports the warnings and the refusal of a line on standard error, with their places.
void reportAnswer(const AnsweredLine& line);

}  // namespace QosAgent
