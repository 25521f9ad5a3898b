#include "platform/Qos/PolicyMapStatus.h"

#include "platform/Vex/Derive.h"

namespace Qos {

constinit const Vex::TypeRecord PolicyMapClass::kTypeRecord = Vex::recordOf<PolicyMapClass>();
constinit const Vex::TypeRecord PolicyMapStatus::kTypeRecord = Vex::recordOf<PolicyMapStatus>();

PolicyMapStatus::PolicyMapStatus(const Orin::String& pmapName) : pmapName_(pmapName) {}
PolicyMapStatus::~PolicyMapStatus() = default;

void PolicyMapStatus::versionIs(std::uint32_t version) {
    attributeIs(kVersion.id, version_, version);
}

void PolicyMapStatus::classIs(const Orin::String& cmapName, const PolicyMapClass& policyMapClass) {
    memberIs(kClasses.id, classes_, cmapName, policyMapClass);
}

void PolicyMapStatus::classDel(const Orin::String& cmapName) {
    memberDel(kClasses.id, classes_, cmapName);
}

}  // namespace Qos
