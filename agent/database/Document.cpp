#include "agent/database/Document.h"

#include <utility>

#include "agent/database/Checker.h"
#include "agent/database/Scalars.h"

namespace QosAgent {

std::optional<Fault> checkDocument(Database& database, const JsonValue& document) {
    Faults faults;
    checkDocument(database, document, faults);
    if (faults.empty()) return {};
    return faults.found().front();
}

void checkDocument(Database& database, const JsonValue& document, Faults& faults) {
    if (!document.is(JsonKind::object))
        faults.add(document.offset(), unexpected("an object", document.kind()));
    Checker checker(database.interner());
    for (const JsonMember& member : document.members()) {
        if (const Subtree* subtree = database.subtreeAt(member.key))
            checker.checkAll(rootForm(subtree->type), {}, member.value, faults);
        else
            faults.add(member.keyOffset, noSubtree(member.key));
    }
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
