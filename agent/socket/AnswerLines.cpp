#include "agent/socket/AnswerLines.h"

#include "agent/json/JsonWriter.h"

namespace QosAgent {
namespace {

std::string remarkLine(const char* kind, std::size_t line, const Remark& remark) {
    std::string text;
    JsonWriter writer(text);
    writer.beginObject().key(kind).beginObject();
    writer.key("line").number(line).key("column").number(remark.column);
    writer.key("message").text(remark.message).endObject().endObject();
    return text += '\n';
}

}  // namespace

std::string refusedLine(std::size_t line, const Remark& refused) {
    return remarkLine("refused", line, refused);
}

std::string warningLine(std::size_t line, const Remark& warning) {
    return remarkLine("warning", line, warning);
}

}  // namespace QosAgent
