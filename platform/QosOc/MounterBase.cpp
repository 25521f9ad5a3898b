#include "platform/QosOc/MounterBase.h"

namespace QosOc {

void MounterBase::doMounts() {
    const Orin::Ptr<Strata::MountGroup> mountGroup = context()->mountGroup();
    doPluginSpecificMounts(mountGroup);
    for (const std::string& fault : mountGroup->faults())
        warn(fault);
    doStrataMountsComplete(mountGroup->status(), context()->entityManager());
}

void MounterBase::doMountsComplete(Strata::MountStatus status,
                                   const Orin::Ptr<Strata::EntityManager>& entityManager) {
    doPluginSpecificMountsComplete(status, entityManager);
    createPluginStatePhase1();
    createPluginStatePhase2();
    createSm();
    startPluginRunnabilitySm();
}

}  // namespace QosOc
