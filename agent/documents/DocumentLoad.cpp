#include "agent/documents/DocumentLoad.h"

#include <utility>

#include "agent/database/Document.h"
#include "agent/openconfig/OpenConfigReader.h"

namespace QosAgent {

std::optional<Diagnostic> DocumentLoad::load(const std::string& name) {
    std::optional<Progress> progress(name);
    auto read = readDocument(name);
    if (const auto* refused = std::get_if<Diagnostic>(&read)) return *refused;
    auto& document = std::get<DocumentFile>(read);
    const auto applied = apply(document, *progress);
    progress.reset();
    if (const auto* fault = std::get_if<Fault>(&applied))
        return refusal(name, document.text, *fault);
    reportAll(document, std::get<std::vector<Warning>>(applied), Diagnostic::Kind::warning);
    return {};
}

std::variant<std::vector<Warning>, Fault> DocumentLoad::apply(DocumentFile& document,
                                                              Progress& progress) {
    const JsonValue root = document.json.root();
    if (isOpenConfig(root)) return configuration_.apply(std::move(document.json), root);
    if (auto fault = checkDocument(database_, root)) return *std::move(fault);
    mergeDocument(database_, root,
                  [&](std::size_t offset) { progress.doneIs(offset, document.text.size()); });
    return {};
}

}  // namespace QosAgent
