#include "platform/QosOc/State/Terms.h"

#include <utility>

#include "platform/Vex/Derive.h"

namespace QosOc::State {

constinit const Vex::TypeRecord Terms::kTypeRecord = Vex::recordOf<Terms>();

Terms::~Terms() = default;

void Terms::termIs(const Term& term) {
    memberIs(kTerm.id, term_, term.id, term);
}

void Terms::conditionsIs(Term& term, std::optional<Config::TermConditions> conditions) {
    if (term.conditions == conditions) return;
    term.conditions = std::move(conditions);
    const Orin::String changed = term.id;
    publishChange(kTerm.id, &changed);
}

void Terms::actionsIs(Term& term, const Config::TermActions& actions) {
    if (term.actions == actions) return;
    term.actions = actions;
    const Orin::String changed = term.id;
    publishChange(kTerm.id, &changed);
}

void Terms::termDel(const Orin::String& id) {
    memberDel(kTerm.id, term_, id);
}

}  // namespace QosOc::State
