#include "platform/Vex/Module.h"

#include "platform/Acl/Input/Config.h"

namespace Acl {
namespace {

constexpr const Vex::TypeRecord* kTypes[] = {
    &Input::Config::kTypeRecord, &Input::AclTypeConfig::kTypeRecord,
    &AclConfig::kTypeRecord,     &AclSubConfig::kTypeRecord,
    &IpRuleConfig::kTypeRecord,  &IpFilter::kTypeRecord,
    &Ip6RuleConfig::kTypeRecord, &Ip6Filter::kTypeRecord,
};
constexpr Vex::Module kModule{"Acl", kTypes};
const Vex::ModuleRegistration registration(kModule);

}  // namespace
}  // namespace Acl
