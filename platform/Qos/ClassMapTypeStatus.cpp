#include "platform/Qos/ClassMapTypeStatus.h"

#include "platform/Vex/Derive.h"

namespace Qos {

constinit const Vex::TypeRecord ClassMapTypeStatus::kTypeRecord =
    Vex::recordOf<ClassMapTypeStatus>();

ClassMapTypeStatus::ClassMapTypeStatus(MapType mapType) : mapType_(mapType) {}
ClassMapTypeStatus::~ClassMapTypeStatus() = default;

void ClassMapTypeStatus::cmapStatusIs(const Orin::Ptr<ClassMapStatus>& cmapStatus) {
    memberIs(kCmapStatus.id, cmapStatus_, cmapStatus->cmapName(), cmapStatus);
}

Orin::Ptr<ClassMapStatus> ClassMapTypeStatus::cmapStatusDel(const Orin::String& cmapName) {
    return memberDel(kCmapStatus.id, cmapStatus_, cmapName).value_or(nullptr);
}

}  // namespace Qos
