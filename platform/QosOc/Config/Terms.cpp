#include "platform/QosOc/Config/Terms.h"

#include "platform/Vex/Derive.h"

namespace QosOc::Config {

constinit const Vex::TypeRecord Terms::kTypeRecord = Vex::recordOf<Terms>();

Terms::~Terms() = default;

void Terms::termIs(const Term& term) {
    memberIs(kTerm.id, term_, term.id, term);
}

void Terms::termDel(const Orin::String& id) {
    memberDel(kTerm.id, term_, id);
}

}  // namespace QosOc::Config
