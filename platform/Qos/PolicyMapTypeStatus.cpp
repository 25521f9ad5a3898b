#include "platform/Qos/PolicyMapTypeStatus.h"

#include "platform/Vex/Derive.h"

namespace Qos {

constinit const Vex::TypeRecord PolicyMapTypeStatus::kTypeRecord =
    Vex::recordOf<PolicyMapTypeStatus>();

PolicyMapTypeStatus::PolicyMapTypeStatus(MapType mapType) : mapType_(mapType) {}
PolicyMapTypeStatus::~PolicyMapTypeStatus() = default;

void PolicyMapTypeStatus::pmapStatusIs(const Orin::Ptr<PolicyMapStatus>& pmapStatus) {
    memberIs(kPmapStatus.id, pmapStatus_, pmapStatus->pmapName(), pmapStatus);
}

Orin::Ptr<PolicyMapStatus> PolicyMapTypeStatus::pmapStatusDel(const Orin::String& pmapName) {
    return memberDel(kPmapStatus.id, pmapStatus_, pmapName).value_or(nullptr);
}

}  // namespace Qos
