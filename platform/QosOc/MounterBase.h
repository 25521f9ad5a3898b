#pragma once

#include "platform/Agent/MounterPlugin.h"
#include "platform/Orin/Export.h"
#include "platform/Orin/Ptr.h"
#include "platform/Strata/Mount.h"

namespace QosOc {

/// The base of the mounters of OpenConfig QoS plug-ins. It drives them once through, in this
/// order: `doPluginSpecificMounts`, `doPluginSpecificMountsComplete`, `createSm`.
class PLATFORM_API MounterBase : public Agent::MounterPlugin::MounterBase {
public:
    using Agent::MounterPlugin::MounterBase::MounterBase;

    void doMountsComplete(Strata::MountStatus status,
                          const Orin::Ptr<Strata::EntityManager>& entityManager) override;
    /// The agent's database lies in the same process: mounts are complete when they are made.
    /// A path without an entity is no failure; the mounter finds nothing there.
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
