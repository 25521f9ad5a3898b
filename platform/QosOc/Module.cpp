#include "platform/Vex/Module.h"

#include "platform/QosOc/AclNameAndType.h"
#include "platform/QosOc/Config/ClassifiersDir.h"
#include "platform/QosOc/State/ClassifiersDir.h"

namespace QosOc {
namespace {

constexpr const Vex::TypeRecord* kTypes[] = {
    &Config::ClassifiersDir::kTypeRecord,
    &Config::Classifier::kTypeRecord,
    &Config::ClassifierConfig::kTypeRecord,
    &Config::Terms::kTypeRecord,
    &Config::Term::kTypeRecord,
    &Config::TermConditions::kTypeRecord,
    &Config::TermConditionsIpConfig::kTypeRecord,
    &Config::TermActions::kTypeRecord,
    &AclNameAndType::kTypeRecord,
    &State::ClassifiersDir::kTypeRecord,
    &State::Classifier::kTypeRecord,
    &State::ClassifierState::kTypeRecord,
    &State::Terms::kTypeRecord,
};
constexpr Vex::Module kModule{"QosOc", kTypes};
const Vex::ModuleRegistration registration(kModule);

}  // namespace
}  // namespace QosOc
