#include "platform/Strata/Mounter.h"

namespace Strata {

void Mounter::handleParent() {}

void Mounter::doStrataMountsComplete(MountStatus status,
                                     const Orin::Ptr<EntityManager>& entityManager) {
    handleMountStatus(status);
    doMountsComplete(status, entityManager);
}

void Mounter::handleMountStatus(MountStatus status) {
    mountStatus_ = status;
}

}  // namespace Strata
