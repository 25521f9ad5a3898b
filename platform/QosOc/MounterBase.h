#pragma once

#include "platform/Agent/MounterPlugin.h"
#include "platform/Orin/Export.h"
#include "platform/Orin/Ptr.h"

namespace QosOc {

/// The base class of the mounters of OpenConfig QoS plug-ins. It calls, once and in this order,
/// `doPluginSpecificMounts`, `doPluginSpecificMountsComplete` and `createSm`.
class PLATFORM_API MounterBase : public Agent::MounterPlugin::MounterBase {
public:
    using Agent::MounterPlugin::MounterBase::MounterBase;

    void doMountsComplete(Strata::MountStatus status,
                          const Orin::Ptr<Strata::EntityManager>& entityManager) override;
    /// Requests the mounts and completes them at once, because the agent's database is in the same
    /// process. Prints a line to standard error for each mount that the database refuses;
    /// `doMountsComplete` is then called with `mountFailed_`.
    void doMounts() override;

    /// Adds the mounts that the plug-in needs.
    virtual void doPluginSpecificMounts(const Orin::Ptr<Strata::MountGroup>& mountGroup) = 0;
    /// Takes the mounted entities.
    virtual void doPluginSpecificMountsComplete(
        Strata::MountStatus status, const Orin::Ptr<Strata::EntityManager>& entityManager) = 0;
    /// Starts the plug-in's work.
    virtual void createSm() = 0;
};

}  // namespace QosOc
