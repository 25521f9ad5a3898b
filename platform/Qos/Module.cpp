#include "platform/Vex/Module.h"

#include "platform/Qos/Input/Config.h"
#include "platform/Qos/Status.h"

namespace Qos {
namespace {

constexpr const Vex::TypeRecord* kTypes[] = {
    &Status::kTypeRecord,
    &PolicyMapTypeStatus::kTypeRecord,
    &PolicyMapStatus::kTypeRecord,
    &PolicyMapClass::kTypeRecord,
    &ClassMapTypeStatus::kTypeRecord,
    &ClassMapStatus::kTypeRecord,
    &ForwardingGroupNameToTcMap::kTypeRecord,
    &Input::Config::kTypeRecord,
};
constexpr Vex::Module kModule{"Qos", kTypes};
const Vex::ModuleRegistration registration(kModule);

}  // namespace
}  // namespace Qos
