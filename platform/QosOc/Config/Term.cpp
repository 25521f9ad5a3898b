#include "platform/QosOc/Config/Term.h"

#include "platform/Vex/Derive.h"

namespace QosOc::Config {

constinit const Vex::TypeRecord TermConditionsIpConfig::kTypeRecord =
    Vex::recordOf<TermConditionsIpConfig>();
constinit const Vex::TypeRecord TermConditions::kTypeRecord = Vex::recordOf<TermConditions>();
constinit const Vex::TypeRecord TermActions::kTypeRecord = Vex::recordOf<TermActions>();
constinit const Vex::TypeRecord Term::kTypeRecord = Vex::recordOf<Term>();

}  // namespace QosOc::Config
