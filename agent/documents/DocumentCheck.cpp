#include "agent/documents/DocumentCheck.h"

#include <optional>
#include <utility>

#include "agent/database/Document.h"
#include "agent/output/Progress.h"

namespace QosAgent {
namespace {

/// Returns true if there are none.
bool reportFaults(const DocumentFile& document, std::vector<Fault> faults) {
    if (faults.size() == DocumentCheck::kMostFaults)
        faults.back().message += " (no more than " + std::to_string(DocumentCheck::kMostFaults) +
                                 " faults of a document are reported)";
    reportAll(document, faults, Diagnostic::Kind::refusal);
    return faults.empty();
}

std::variant<DocumentFile, Diagnostic> readWithProgress(const std::string& name) {
    const Progress progress(name);
    return readDocument(name);
}

}  // namespace

bool DocumentCheck::check(const std::string& name) {
    const auto read = readWithProgress(name);
    if (const auto* refused = std::get_if<Diagnostic>(&read)) {
        report(*refused);
        return false;
    }
    const auto& document = std::get<DocumentFile>(read);
    return isOpenConfig(document.json.root()) ? checkConfiguration(document) : checkState(document);
}

bool DocumentCheck::checkState(const DocumentFile& document) {
    Faults faults(kMostFaults);
    checkDocument(database_, document.json.root(), faults);
    return reportFaults(document, faults.found());
}

bool DocumentCheck::checkConfiguration(const DocumentFile& document) {
    OpenConfigReader reader(database_.interner(), strictness_, kMostFaults);
    reader.read(document.json.root());
    // Under --strict the faults include the warnings.
    if (strictness_ == Strictness::warns)
        reportAll(document, reader.warnings(), Diagnostic::Kind::warning);
    return reportFaults(document, reader.faults());
}

}  // namespace QosAgent
