#pragma once

#include <cstddef>
#include <string>

#include "agent/service/Service.h"

namespace QosAgent {

/// A line of a change stream, and what became of it.
struct AnsweredLine {
    const std::string& stream;  ///< the file's name, or `-`
    bool isKept;                ///< the stream is a file in which the line can be read again
    std::size_t number;         ///< of the line, from 1
    const Answer& answer;
};

/// Reports warnings and refusal of a line on standard error, with their places.
void reportAnswer(const AnsweredLine& line);

}  // namespace QosAgent
