#include "platform/QosOc/MounterBase.h"

namespace QosOc {

void MounterBase::doMounts() {
    const auto mountGroup = Orin::Ptr<Strata::MountGroup>::adopt(new Strata::MountGroup);
    doPluginSpecificMounts(mountGroup);
    doStrataMountsComplete(Strata::mountSuccess_, context()->entityManager());
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
