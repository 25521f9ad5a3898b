#pragma once

#include "platform/Orin/Ptr.h"
#include "platform/Strata/EntityManager.h"
#include "platform/Strata/MountStatus.h"
#include "platform/Vex/PublishingNode.h"

namespace Strata {

/// The base class of objects that wait for mounts. An entity: it publishes its attributes.
class PLATFORM_API Mounter : public Vex::PublishingNode {
public:
    /// Called when the mounter becomes a member of another entity.
    virtual void handleParent();
    /// Called when the database has answered the mounts. Stores the status and calls
    /// `doMountsComplete`.
    virtual void doStrataMountsComplete(MountStatus status,
                                        const Orin::Ptr<EntityManager>& entityManager);
    virtual void doMountsComplete(MountStatus status,
                                  const Orin::Ptr<EntityManager>& entityManager) = 0;
    /// Called for each new status of the mounts.
    virtual void handleMountStatus(MountStatus status);

    MountStatus mountStatus() const noexcept { return mountStatus_; }

private:
    MountStatus mountStatus_ = mountUnknown_;
};

}  // namespace Strata
