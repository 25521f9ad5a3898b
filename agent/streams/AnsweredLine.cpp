#include "agent/streams/AnsweredLine.h"

#include "agent/json/Excerpt.h"
#include "agent/output/Diagnostics.h"

namespace QosAgent {

void reportAnswer(const AnsweredLine& line) {
    const auto& [stream, isKept, number, answer] = line;
    for (const Remark& passed : answer.warnings)
        report(warning(stream, TextPlace{number, passed.column}, passed.message));
    if (!answer.refused) return;
    std::string message = answer.refused->message;
    const std::size_t column = answer.refused->column;
    if (!isKept) message += "; line: " + excerptAround(answer.line, column - 1);
    report(refusal(stream, TextPlace{number, column}, message));
}

}  // namespace QosAgent
