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

const ChangeLinePtr& Change::shared() const {
    if (shared_) return shared_;
    ChangeLine line{path_, {}, isDelete()};
    JsonWriter writer(line.text);
    writer.beginObject().key(isDelete() ? "delete" : "update").text(path_);
    if (!isDelete()) writeValue(writer.key("value"), *type_, *value_);
    writer.endObject();
    line.text += '\n';
    shared_ = std::make_shared<const ChangeLine>(std::move(line));
    return shared_;
}

}  // namespace QosAgent
