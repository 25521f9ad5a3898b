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

/// The context with which an agent initialises mounter plug-ins. It owns the mounters that they
/// create.
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
    /// Releases all mounters, the last one first.
    void mounterDelAll();

private:
    Orin::Ptr<Strata::EntityManager> entityManager_;
    std::vector<Orin::Ptr<MounterBase>> mounters_;
};

/// The base class of mounters: the agent requests and completes their mounts, then starts them.
class PLATFORM_API MounterBase : public Strata::Mounter {
public:
    explicit MounterBase(std::string_view name) : name_(name) {}

    const std::string& name() const noexcept { return name_; }
    /// Adds the mounter to the context, which then owns it, and requests the mounts. Prints a line
    /// to standard error for each type of the mounter's machines that is in no module.
    void init(const Orin::Ptr<MounterContext>& context);

    virtual void createPluginStatePhase1();
    virtual void createPluginStatePhase2();
    virtual void startPluginRunnabilitySm();
    /// Requests the mounts.
    virtual void doMounts() = 0;

protected:
    /// Prints a line to standard error that begins with the mounter's name.
    void warn(std::string_view line) const;
    /// Null before `init` and after the context is destroyed.
    MounterContext* context() const noexcept { return context_; }

private:
    friend class MounterContext;

    std::string name_;
    MounterContext* context_ = nullptr;
};

/// A plug-in that creates one mounter.
template <class Mounter>
class Plugin : public PluginBase<MounterContext> {
public:
    void init(MounterContext* context) override {
        const auto mounter = Orin::Ptr<Mounter>::adopt(new Mounter());
        mounter->MounterBase::init(Orin::Ptr<MounterContext>::sharing(context));
    }
};

}  // namespace Agent::MounterPlugin
