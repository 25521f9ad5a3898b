#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/Orin/Export.h"
#include "platform/Orin/Ptr.h"
#include "platform/OvSlab/Slab.h"
#include "platform/Plugin/PluginBase.h"
#include "platform/Strata/MountGroup.h"
#include "platform/Strata/Mounter.h"

namespace Agent::MounterPlugin {

class MounterBase;

/// What an agent hands to the mounter plug-ins that it initialises, and where it finds the
/// mounters that they made.
class PLATFORM_API MounterContext : public Orin::Node {
public:
    explicit MounterContext(const Orin::Ptr<Strata::EntityManager>& entityManager);
    ~MounterContext() override;

    const Orin::Ptr<Strata::EntityManager>& entityManager() const noexcept {
        return entityManager_;
    }
    /// Returns a new, empty group of mounts of the database.
    Orin::Ptr<Strata::MountGroup> mountGroup() const;
    const std::vector<Orin::Ptr<MounterBase>>& mounters() const noexcept { return mounters_; }
    void mounterAdd(const Orin::Ptr<MounterBase>& mounter) { mounters_.push_back(mounter); }
    /// Lets go of all mounters, the last one first.
    void mounterDelAll();

private:
    Orin::Ptr<Strata::EntityManager> entityManager_;
    std::vector<Orin::Ptr<MounterBase>> mounters_;
};

/// A mounter that an agent drives: its mounts are made, completed, and its work is started.
class PLATFORM_API MounterBase : public Strata::Mounter {
public:
    explicit MounterBase(std::string_view name) : name_(name) {}

    const std::string& name() const noexcept { return name_; }
    /// Takes a place in the context, which keeps the mounter alive, and begins to mount. Prints a
    /// line to standard error for each type of the mounter's machines that is in no module.
    void init(const Orin::Ptr<MounterContext>& context);

    virtual void createPluginStatePhase1();
    virtual void createPluginStatePhase2();
    virtual void startPluginRunnabilitySm();
    /// Asks for the mounts.
    virtual void doMounts() = 0;

protected:
    /// Prints a line to standard error, with the mounter's name in front.
    void warn(std::string_view line) const;
    /// Null before `init` and after the context has gone.
    MounterContext* context() const noexcept { return context_; }

private:
    friend class MounterContext;

    std::string name_;
    MounterContext* context_ = nullptr;
};

/// The plug-in whose work is one mounter.
template <class Mounter>
class Plugin : public PluginBase<MounterContext> {
public:
    void init(MounterContext* context) override {
        const auto mounter = Orin::Ptr<Mounter>::adopt(new Mounter());
        mounter->MounterBase::init(Orin::Ptr<MounterContext>::sharing(context));
    }
};

}  // namespace Agent::MounterPlugin
