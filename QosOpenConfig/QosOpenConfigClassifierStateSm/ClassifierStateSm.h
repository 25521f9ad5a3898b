#pragma once

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/AclTypeStateSm.h"
#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifierConfigSm.h"
#include "QosOpenConfig/QosOpenConfigClassifierStateSm/CmapTypeStatusSm.h"
#include "QosOpenConfig/QosOpenConfigClassifierStateSm/PmapTypeStatusSm.h"
#include "platform/Acl/Input/Config.h"
#include "platform/Qos/Status.h"

namespace QosOc {

/// The root: one child for the QoS map type's policy maps and class maps, for the IPv4 and the IPv6
/// access lists, and for each configured classifier. Writes nothing itself.
class ClassifierStateSm final : public Vex::Reactor<ClassifierStateSm> {
public:
    static constexpr std::string_view kTypeName = "QosOc::ClassifierStateSm";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::watched("qosStatus", 1, &ClassifierStateSm::qosStatus_, qosStatusDispatch),
            Vex::watched("aclCliConfig", 2, &ClassifierStateSm::aclCliConfig_, aclConfigDispatch),
            Vex::given("qosCliConfig", 3, &ClassifierStateSm::qosCliConfig_),
            Vex::watched("classifierConfigDir", 4, &ClassifierStateSm::classifierConfigDir_,
                         classifierConfigDirDispatch),
            Vex::given("classifierStateDir", 5, &ClassifierStateSm::classifierStateDir_),
            Vex::own("classifiersWithPmap", 6, &ClassifierStateSm::classifiersWithPmap_),
            Vex::own("pmapTypeStatusSm", 7, &ClassifierStateSm::pmapTypeStatusSm_),
            Vex::own("cmapTypeStatusSm", 8, &ClassifierStateSm::cmapTypeStatusSm_),
            Vex::own("aclTypeStateSm", 9, &ClassifierStateSm::aclTypeStateSm_),
            Vex::own("classifierConfigSm", 10, &ClassifierStateSm::classifierConfigSm_),
        };
    }
    using QosStatus = Orin::Ptr<const Qos::Status>;
    using AclConfig = Orin::Ptr<const Acl::Input::Config>;
    using QosConfig = Orin::Ptr<const Qos::Input::Config>;
    using ConfigDir = Orin::Ptr<const Config::ClassifiersDir>;
    using Registry = Orin::Ptr<ClassifiersWithPmap>;

    /// Only `qosCliConfig` may be null.
    ClassifierStateSm(const QosStatus& qosStatus, const AclConfig& aclCliConfig,
                      const QosConfig& qosCliConfig, const ConfigDir& classifierConfigDir,
                      const StateDir& classifierStateDir);
    ~ClassifierStateSm() override { stop(); }
    static Orin::Ptr<ClassifierStateSm> ClassifierStateSmIs(const QosStatus& qosStatus,
                                                            const AclConfig& aclCliConfig,
                                                            const QosConfig& qosCliConfig,
                                                            const ConfigDir& classifierConfigDir,
                                                            const StateDir& classifierStateDir);

    const Orin::Ptr<PmapTypeStatusSm>& pmapTypeStatusSmIs(
        const Orin::Ptr<const Qos::PolicyMapTypeStatus>& pmapTypeStatus,
        const QosConfig& qosCliConfig, const ConfigDir& classifierConfigDir,
        const Registry& classifiersWithPmap, const StateDir& classifierStateDir);
    Orin::Ptr<PmapTypeStatusSm> pmapTypeStatusSmDel(Qos::MapType mapType);
    void pmapTypeStatusSmDelAll();
    const Orin::Ptr<CmapTypeStatusSm>& cmapTypeStatusSmIs(
        const Orin::Ptr<const Qos::ClassMapTypeStatus>& cmapTypeStatus,
        const StateDir& classifierStateDir);
    Orin::Ptr<CmapTypeStatusSm> cmapTypeStatusSmDel(Qos::MapType mapType);
    void cmapTypeStatusSmDelAll();
    const Orin::Ptr<AclTypeStateSm>& aclTypeStateSmIs(
        const Orin::Ptr<const Acl::Input::AclTypeConfig>& aclTypeConfig,
        const StateDir& classifierStateDir);
    Orin::Ptr<AclTypeStateSm> aclTypeStateSmDel(Acl::AclType aclType);
    void aclTypeStateSmDelAll();
    const Orin::Ptr<ClassifierConfigSm>& classifierConfigSmIs(
        const Orin::Ptr<const Config::Classifier>& classifier, const Registry& classifiersWithPmap,
        const StateDir& classifierStateDir);
    Orin::Ptr<ClassifierConfigSm> classifierConfigSmDel(const Orin::String& name);
    void classifierConfigSmDelAll();

    void handleInitialized();
    void handlePmapTypeStatus(Qos::MapType mapType);
    void handleCmapTypeStatus(Qos::MapType mapType);
    void handleAclTypeConfig(Acl::AclType aclType);
    void handleClassifierConfig(const Orin::String& name);
    /// Lets each child take its state back and removes it, policy maps first. The caller must have
    /// turned notifications off, or changes of the inputs create children again.
    void takeStateBack();

    static constexpr Orin::Dispatch qosStatusDispatch = Vex::dispatchTo<
        ClassifierStateSm,
        Vex::On<Qos::Status::kPmapTypeStatus, &ClassifierStateSm::handlePmapTypeStatus>,
        Vex::On<Qos::Status::kCmapTypeStatus, &ClassifierStateSm::handleCmapTypeStatus>>;
    static constexpr Orin::Dispatch aclConfigDispatch =
        Vex::dispatchTo<ClassifierStateSm, Vex::On<Acl::Input::Config::kAclTypeConfig,
                                                   &ClassifierStateSm::handleAclTypeConfig>>;
    static constexpr Orin::Dispatch classifierConfigDirDispatch =
        Vex::dispatchTo<ClassifierStateSm, Vex::On<Config::ClassifiersDir::kClassifier,
                                                   &ClassifierStateSm::handleClassifierConfig>>;

private:
    template <class K, class Sm>
    using Children = Vex::Children<K, Sm, Vex::seedOf(Sm::kTypeName)>;

    Vex::Watched<Qos::Status> qosStatus_;
    Vex::Watched<Acl::Input::Config> aclCliConfig_;
    QosConfig qosCliConfig_;
    Vex::Watched<Config::ClassifiersDir> classifierConfigDir_;
    StateDir classifierStateDir_;
    Registry classifiersWithPmap_;
    Children<Qos::MapType, PmapTypeStatusSm> pmapTypeStatusSm_;
    Children<Qos::MapType, CmapTypeStatusSm> cmapTypeStatusSm_;
    Children<Acl::AclType, AclTypeStateSm> aclTypeStateSm_;
    Children<Orin::String, ClassifierConfigSm> classifierConfigSm_;
};

Orin::Ptr<ClassifierStateSm> classifierStateSmFactory(
    const ClassifierStateSm::QosStatus& qosStatus, const ClassifierStateSm::AclConfig& aclCliConfig,
    const ClassifierStateSm::QosConfig& qosCliConfig,
    const ClassifierStateSm::ConfigDir& classifierConfigDir, const StateDir& classifierStateDir);

}  // namespace QosOc

extern template class Vex::Reactor<QosOc::ClassifierStateSm>;
