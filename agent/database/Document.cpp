#include "agent/database/Document.h"

#include <utility>

#include "agent/database/Checker.h"
#include "agent/database/Scalars.h"

namespace QosAgent {

std::optional<Fault> checkDocument(Database& database, const JsonValue& document) {
    if (!document.is(JsonKind::object))
        return Fault{document.offset(), unexpected("an object", document.kind())};
    Checker checker(database.interner());
    for (const JsonMember& member : document.members()) {
        const Subtree* subtree = database.subtreeAt(member.key);
        if (subtree == nullptr) return Fault{member.keyOffset, noSubtree(member.key)};
        if (auto fault = checker.check(rootForm(subtree->type), {}, member.value)) return fault;
    }
    return {};
}

void mergeDocument(Database& database, const JsonValue& document, Editor::Progress progress) {
    Editor editor(database);
    editor.progressIs(std::move(progress));
    for (const JsonMember& member : document.members()) {
        const Subtree* subtree = database.subtreeAt(member.key);
        editor.update({subtree, {}, rootForm(subtree->type), {}}, member.value);
    }
}

}  // namespace QosAgent
