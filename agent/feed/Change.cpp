#include "agent/feed/Change.h"

#include "agent/database/Printer.h"
#include "agent/json/JsonWriter.h"

namespace QosAgent {

std::string Change::valueJson() const {
    std::string text;
    JsonWriter writer(text);
    writeValue(writer, *type_, *value_);
    return text;
}

const std::string& Change::line() const {
    if (!line_.empty()) return line_;
    JsonWriter writer(line_);
    writer.beginObject().key(isDelete() ? "delete" : "update").text(path_);
    if (!isDelete()) writeValue(writer.key("value"), *type_, *value_);
    writer.endObject();
    return line_;
}

}  // namespace QosAgent
