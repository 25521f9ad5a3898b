#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "agent/json/Json.h"
#include "agent/output/Diagnostics.h"

namespace QosAgent {

/// A document of the command line: the contents of its file, as text and as a tree.
struct DocumentFile {
    std::string name;
    std::string text;
    Json json;
};

/// Reads a document and parses its JSON. Returns a refusal if one of these fails.
std::variant<DocumentFile, Diagnostic> readDocument(const std::string& name);

/// Reports faults or warnings, `{offset, message}` in ascending order of offset, with their places
/// in the document. Reads the text once.
template <class Findings>
void reportAll(const DocumentFile& document, const Findings& findings, Diagnostic::Kind kind) {
    TextPlace place = kTextBegin;
    std::size_t passed = 0;
    const std::string_view text = document.text;
    for (const auto& [offset, message] : findings) {
        place = placeAfter(place, text.substr(passed, offset - passed));
        passed = offset;
        report(kind == Diagnostic::Kind::warning ? warning(document.name, place, message)
                                                 : refusal(document.name, place, message));
    }
}

}  // namespace QosAgent
