#include "platform/Strata/MountGroup.h"

#include "platform/Vex/Escape.h"

namespace Strata {

MountGroup::MountGroup(const Orin::Ptr<EntityManager>& entityManager)
    : entityManager_(entityManager) {}

void MountGroup::doMount(const Mount& mount) {
    mounts_.push_back(mount);
    const std::string fault = entityManager_->faultOf(mount);
    if (fault.empty()) return;
    std::string line = "cannot mount \"";
    Vex::appendEscaped(line, mount.path());
    faults_.push_back(line + "\": " + fault);
}

}  // namespace Strata
