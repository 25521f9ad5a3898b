#pragma once

#include "platform/Orin/Ptr.h"
#include "platform/Strata/EntityManager.h"
#include "platform/Strata/MountStatus.h"
#include "platform/Vex/PublishingNode.h"

namespace Strata {

/// Somebody who waits for mounts of the state database. An entity: it publishes its attributes.
class PLATFORM_API Mounter : public Vex::PublishingNode {
public:
    /// Told when the mounter is given a place in another entity.
    virtual void handleParent();
    /// The database is done with the mounts: keeps the status and passes both on to
    /// `doMountsComplete`.
    virtual void doStrataMountsComplete(MountStatus status,
                                        const Orin::Ptr<EntityManager>& entityManager);
    virtual void doMountsComplete(MountStatus status,
                                  const Orin::Ptr<EntityManager>& entityManager) = 0;
    /// Told of each status that the mounts come to.
    virtual void handleMountStatus(MountStatus status);

    MountStatus mountStatus() const noexcept { return mountStatus_; }

private:
    MountStatus mountStatus_ = mountUnknown_;
};

}  // namespace Strata
