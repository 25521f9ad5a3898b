#include "platform/Qos/Status.h"

#include "platform/Vex/Derive.h"

namespace Qos {

constinit const Vex::TypeRecord Status::kTypeRecord = Vex::recordOf<Status>();

Status::~Status() = default;

void Status::pmapTypeStatusIs(const Orin::Ptr<PolicyMapTypeStatus>& pmapTypeStatus) {
    memberIs(kPmapTypeStatus.id, pmapTypeStatus_, pmapTypeStatus->mapType(), pmapTypeStatus);
}

Orin::Ptr<PolicyMapTypeStatus> Status::pmapTypeStatusDel(MapType mapType) {
    return memberDel(kPmapTypeStatus.id, pmapTypeStatus_, mapType).value_or(nullptr);
}

void Status::cmapTypeStatusIs(const Orin::Ptr<ClassMapTypeStatus>& cmapTypeStatus) {
    memberIs(kCmapTypeStatus.id, cmapTypeStatus_, cmapTypeStatus->mapType(), cmapTypeStatus);
}

Orin::Ptr<ClassMapTypeStatus> Status::cmapTypeStatusDel(MapType mapType) {
    return memberDel(kCmapTypeStatus.id, cmapTypeStatus_, mapType).value_or(nullptr);
}

}  // namespace Qos
