#include "platform/QosOc/State/Terms.h"

#include <utility>

#include "platform/Vex/Derive.h"

namespace QosOc::State {

constinit const Vex::TypeRecord Terms::kTypeRecord = Vex::recordOf<Terms>();

Terms::~Terms() = default;

void Terms::termIs(const Term& term) {
    memberIs(kTerm.id, term_, term.id, term);
}

void Terms::bareTermIs(const Orin::String& id) {
    const Orin::String changed = id;
    term_.enter(changed, changed);
    publishChange(kTerm.id, &changed);
}

bool Terms::conditionsIs(Term& term, std::optional<Config::TermConditions>&& conditions) {
    if (term.conditions == conditions) return false;
    term.conditions = std::move(conditions);
    publishTerm(term.id);
    return true;
}

bool Terms::dscpsAre(Term& term, QosOc::Classifier::Type family,
                     const Orin::Vector<std::uint8_t>& values) {
    const bool isIpv4 = family == QosOc::Classifier::Type::IPV4;
    const auto ofFamily = isIpv4 ? &Config::TermConditions::ipv4 : &Config::TermConditions::ipv6;
    const auto ofOther = isIpv4 ? &Config::TermConditions::ipv6 : &Config::TermConditions::ipv4;
    const auto& stored = term.conditions;
    if (stored && (*stored.*ofOther).empty() && (*stored.*ofFamily).hasDscps(values)) return false;
    // Reserves memory for the values first: if that fails, nothing has changed.
    Config::TermConditions made;
    Config::TermConditions& changed = stored ? *term.conditions : made;
    (changed.*ofFamily).dscpsAre(values);
    changed.*ofOther = Config::TermConditionsIpConfig();
    if (!stored) term.conditions = std::move(made);
    publishTerm(term.id);
    return true;
}

void Terms::termDel(const Orin::String& id) {
    memberErase(kTerm.id, term_, id);
}

}  // namespace QosOc::State
