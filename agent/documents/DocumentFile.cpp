#include "agent/documents/DocumentFile.h"

#include <cstring>
#include <utility>

#include "agent/host/File.h"
#include "agent/json/JsonReader.h"

namespace QosAgent {

std::variant<DocumentFile, Diagnostic> readDocument(const std::string& name) {
    const Limits limits;
    FileText read = readFile(name, limits.documentBytes);
    if (read.error != 0) return refusal(name, std::strerror(read.error));
    JsonResult json = parseJson(read.text, limits);
    if (const auto* fault = std::get_if<Fault>(&json)) return refusal(name, read.text, *fault);
    return DocumentFile{name, std::move(read.text), std::get<Json>(std::move(json))};
}

}  // namespace QosAgent
