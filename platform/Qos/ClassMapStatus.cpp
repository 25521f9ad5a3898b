#include "platform/Qos/ClassMapStatus.h"

#include "platform/Vex/Derive.h"

namespace Qos {

constinit const Vex::TypeRecord ClassMapStatus::kTypeRecord = Vex::recordOf<ClassMapStatus>();

ClassMapStatus::ClassMapStatus(const Orin::String& cmapName) : cmapName_(cmapName) {}
ClassMapStatus::~ClassMapStatus() = default;

void ClassMapStatus::matchIs(ClassMapMatchOption option, const Orin::String& matched) {
    memberIs(kMatch.id, match_, option, matched);
}

void ClassMapStatus::matchDel(ClassMapMatchOption option) {
    memberDel(kMatch.id, match_, option);
}

}  // namespace Qos
