#pragma once

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifierStateSm.h"
#include "platform/QosOc/MounterBase.h"
#include "platform/Vex/Module.h"
#include "platform/Vex/Trace.h"

namespace QosOc {

/// Mounts the four inputs and the state tree, and owns the root machine over them if the toggle
/// "OCQosClassifierStatePath" is on. Its destructor leaves the state tree unchanged.
class ClassifierStateSmMounter final : public MounterBase,
                                       public OvSlab::Slabbed<ClassifierStateSmMounter> {
public:
    using QosStatus = ClassifierStateSm::QosStatus;
    using AclConfig = ClassifierStateSm::AclConfig;
    using QosConfig = ClassifierStateSm::QosConfig;
    using ConfigDir = ClassifierStateSm::ConfigDir;

    static constexpr std::string_view kTypeName = "QosOc::ClassifierStateSmMounter";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<> kQosStatus{"qosStatus", 642};
    static constexpr Vex::Attribute<> kAclCliConfig{"aclCliConfig", 643};
    static constexpr Vex::Attribute<> kQosCliConfig{"qosCliConfig", 644};
    static constexpr Vex::Attribute<> kClassifierConfigDir{"classifierConfigDir", 645};
    static constexpr Vex::Attribute<> kClassifierStateDir{"classifierStateDir", 646};
    static constexpr Vex::Attribute<> kClassifierStateSm{"classifierStateSm", 647};
    static constexpr auto fields() {
        using Self = ClassifierStateSmMounter;
        return std::tuple{
            Vex::published(kQosStatus, &Self::qosStatus_),
            Vex::published(kAclCliConfig, &Self::aclCliConfig_),
            Vex::published(kQosCliConfig, &Self::qosCliConfig_),
            Vex::published(kClassifierConfigDir, &Self::classifierConfigDir_),
            Vex::published(kClassifierStateDir, &Self::classifierStateDir_),
            Vex::published(kClassifierStateSm, &Self::classifierStateSm_).owned(),
        };
    }

    ClassifierStateSmMounter();
    ~ClassifierStateSmMounter() override;
    static Orin::Ptr<ClassifierStateSmMounter> create();

    const Vex::TypeRecord& typeData() const override { return kTypeRecord; }
    void handleParent() override;
    void doPluginSpecificMounts(const Orin::Ptr<Strata::MountGroup>& mountGroup) override;
    void doPluginSpecificMountsComplete(
        Strata::MountStatus mountStatus,
        const Orin::Ptr<Strata::EntityManager>& entityManager) override;
    void createSm() override;

    void qosStatusIs(const QosStatus& qosStatus);
    void aclCliConfigIs(const AclConfig& aclCliConfig);
    void qosCliConfigIs(const QosConfig& qosCliConfig);
    void classifierConfigDirIs(const ConfigDir& classifierConfigDir);
    void classifierStateDirIs(const StateDir& classifierStateDir);

    /// Returns the root machine; null if there is none.
    const Orin::Ptr<ClassifierStateSm>& classifierStateSm() const noexcept {
        return classifierStateSm_;
    }
    /// Returns the root machine over these inputs; creates it if absent. A root machine over other
    /// inputs is destroyed once the new one is active. If a subscriber of the state calls this
    /// meanwhile, the machine of that later call stays and is returned.
    Orin::Ptr<ClassifierStateSm> classifierStateSmIs(const QosStatus& qosStatus,
                                                     const AclConfig& aclCliConfig,
                                                     const QosConfig& qosCliConfig,
                                                     const ConfigDir& classifierConfigDir,
                                                     const StateDir& classifierStateDir);
    /// Removes the root machine, silences its whole tree and returns it; null if there was none.
    Orin::Ptr<ClassifierStateSm> classifierStateSmDel();

private:
    /// Makes the root machine over the five inputs. If the machine that is there afterwards is not
    /// over the inputs as they are then, it takes its state back and is removed; a new one follows
    /// if all inputs are present.
    void createSmOverInputs();
    bool isOverInputs(const ClassifierStateSm& machine) const;

    QosStatus qosStatus_;
    AclConfig aclCliConfig_;
    QosConfig qosCliConfig_;
    ConfigDir classifierConfigDir_;
    StateDir classifierStateDir_;
    Orin::Ptr<ClassifierStateSm> classifierStateSm_;
};

/// The mounter's trace handle: "QosOpenConfigClassifierStateSmMounter".
[[gnu::visibility("hidden")]] extern constinit Vex::TraceHandle mounterTraceHandle;
/// The types of the mounter source.
extern const Vex::Module kMounterModule;

}  // namespace QosOc
