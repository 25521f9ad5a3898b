#include "QosOpenConfig/QosOpenConfigClassifierStateSmMounter.h"

#include <string_view>
#include <utility>

#include "platform/Agent/Toggles.h"
#include "platform/Vex/Assert.h"
#include "platform/Vex/Derive.h"

namespace QosOc {

constinit Vex::TraceHandle mounterTraceHandle("QosOpenConfigClassifierStateSmMounter", false);

namespace {

constexpr const char* kMounterSource = "QosOpenConfig/QosOpenConfigClassifierStateSmMounter";

consteval Vex::TracePoint mounterTracePoint(const char* function, const char* signature,
                                            unsigned line = __builtin_LINE()) {
    return {kMounterSource, line, function, signature};
}

constexpr auto kDoPluginSpecificMounts = mounterTracePoint(
    "doPluginSpecificMounts",
    "virtual void QosOc::ClassifierStateSmMounter::doPluginSpecificMounts(const Ptr&)");
constexpr auto kDoPluginSpecificMountsComplete =
    mounterTracePoint("doPluginSpecificMountsComplete",
                      "virtual void QosOc::ClassifierStateSmMounter::"
                      "doPluginSpecificMountsComplete(Strata::MountStatus, const Ptr&)");
constexpr auto kCreateSm =
    mounterTracePoint("createSm", "virtual void QosOc::ClassifierStateSmMounter::createSm()");

constexpr std::string_view kQosStatusPath = "qos/status";
constexpr std::string_view kAclCliConfigPath = "acl/config/cli";
constexpr std::string_view kQosCliConfigPath = "qos/input/config/cli";
constexpr std::string_view kClassifierConfigDirPath = "qos/openconfig/config/classifiers";
constexpr std::string_view kClassifierStateDirPath = "qos/openconfig/state/classifiers";

void mount(Strata::MountGroup& mountGroup, std::string_view path, std::string_view type,
           std::string_view flags) {
    Strata::Mount mount(path, type);
    mount.flags().valIs(0);
    mount.handleFlags(flags);
    mountGroup.doMount(mount);
}

bool isStatePathEnabled() {
    static const bool isEnabled =
        getToggleState("OCQosClassifierStatePath", "QosOpenConfig.json", true);
    return isEnabled;
}

constexpr const Vex::TypeRecord* kTypes[] = {&ClassifierStateSmMounter::kTypeRecord};

}  // namespace

constinit const Vex::Module kMounterModule{"QosOpenConfigClassifierStateSmMounter", kTypes};
constinit const Vex::TypeRecord ClassifierStateSmMounter::kTypeRecord =
    Vex::recordOf<ClassifierStateSmMounter>();

ClassifierStateSmMounter::ClassifierStateSmMounter() : MounterBase("ClassifierStateSmMounter") {}

ClassifierStateSmMounter::~ClassifierStateSmMounter() {
    classifierStateSmDel();
}

Orin::Ptr<ClassifierStateSmMounter> ClassifierStateSmMounter::create() {
    static_assert(Vex::tableIsComplete<ClassifierStateSmMounter>(sizeof(MounterBase)));
    return Orin::Ptr<ClassifierStateSmMounter>::adopt(new ClassifierStateSmMounter);
}

void ClassifierStateSmMounter::handleParent() {}

void ClassifierStateSmMounter::doPluginSpecificMounts(
    const Orin::Ptr<Strata::MountGroup>& mountGroup) {
    Vex::traceOf(*this, mounterTraceHandle, kDoPluginSpecificMounts);
    Vex::assertThat(static_cast<bool>(mountGroup), "mg", kMounterSource, __LINE__,
                    kDoPluginSpecificMounts.signature);
    mount(*mountGroup, kQosStatusPath, "Qos::Status", "r");
    mount(*mountGroup, kAclCliConfigPath, "Acl::Input::Config", "r");
    mount(*mountGroup, kQosCliConfigPath, "Qos::Input::Config", "r");
    mount(*mountGroup, kClassifierConfigDirPath, "QosOc::Config::ClassifiersDir", "r");
    mount(*mountGroup, kClassifierStateDirPath, "QosOc::State::ClassifiersDir", "w");
}

void ClassifierStateSmMounter::doPluginSpecificMountsComplete(
    Strata::MountStatus mountStatus, const Orin::Ptr<Strata::EntityManager>& entityManager) {
    Vex::traceOf(*this, mounterTraceHandle, kDoPluginSpecificMountsComplete);
    Vex::assertThat(mountStatus == Strata::mountSuccess_, "mountStatus == Strata::mountSuccess_",
                    kMounterSource, __LINE__, kDoPluginSpecificMountsComplete.signature);
    qosStatusIs(Vex::entityCast<const Qos::Status>(entityManager->getEntity(kQosStatusPath)));
    aclCliConfigIs(
        Vex::entityCast<const Acl::Input::Config>(entityManager->getEntity(kAclCliConfigPath)));
    qosCliConfigIs(
        Vex::entityCast<const Qos::Input::Config>(entityManager->getEntity(kQosCliConfigPath)));
    classifierConfigDirIs(Vex::entityCast<const Config::ClassifiersDir>(
        entityManager->getEntity(kClassifierConfigDirPath)));
    classifierStateDirIs(
        Vex::entityCast<State::ClassifiersDir>(entityManager->getEntity(kClassifierStateDirPath)));
}

void ClassifierStateSmMounter::createSm() {
    Vex::traceOf(*this, mounterTraceHandle, kCreateSm);
    if (!isStatePathEnabled()) {
        Vex::traceOf(*this, mounterTraceHandle, kCreateSm,
                     ", toggle: OCQosClassifierStatePath is disabled, returning");
        return;
    }
    Vex::traceOf(*this, mounterTraceHandle, kCreateSm, ": Instantiating QosOc::ClassifierStateSm");
    createSmOverInputs();
}

void ClassifierStateSmMounter::createSmOverInputs() {
    do {
        const auto made = classifierStateSmIs(qosStatus_, aclCliConfig_, qosCliConfig_,
                                              classifierConfigDir_, classifierStateDir_);
        if (!(classifierStateSm_ == made) || isOverInputs(*made)) return;
        // A subscriber of the state has changed an input, or made a machine over others.
        classifierStateSmDel();
        made->takeStateBack();
    } while (qosStatus_ && aclCliConfig_ && classifierConfigDir_ && classifierStateDir_);
}

bool ClassifierStateSmMounter::isOverInputs(const ClassifierStateSm& machine) const {
    return machine.isMadeFrom(qosStatus_, aclCliConfig_, qosCliConfig_, classifierConfigDir_,
                              classifierStateDir_);
}

void ClassifierStateSmMounter::qosStatusIs(const QosStatus& qosStatus) {
    attributeIs(kQosStatus.id, qosStatus_, qosStatus);
}

void ClassifierStateSmMounter::aclCliConfigIs(const AclConfig& aclCliConfig) {
    attributeIs(kAclCliConfig.id, aclCliConfig_, aclCliConfig);
}

void ClassifierStateSmMounter::qosCliConfigIs(const QosConfig& qosCliConfig) {
    attributeIs(kQosCliConfig.id, qosCliConfig_, qosCliConfig);
}

void ClassifierStateSmMounter::classifierConfigDirIs(const ConfigDir& classifierConfigDir) {
    attributeIs(kClassifierConfigDir.id, classifierConfigDir_, classifierConfigDir);
}

void ClassifierStateSmMounter::classifierStateDirIs(const StateDir& classifierStateDir) {
    attributeIs(kClassifierStateDir.id, classifierStateDir_, classifierStateDir);
}

Orin::Ptr<ClassifierStateSm> ClassifierStateSmMounter::classifierStateSmIs(
    const QosStatus& qosStatus, const AclConfig& aclCliConfig, const QosConfig& qosCliConfig,
    const ConfigDir& classifierConfigDir, const StateDir& classifierStateDir) {
    if (classifierStateSm_ &&
        classifierStateSm_->isMadeFrom(qosStatus, aclCliConfig, qosCliConfig, classifierConfigDir,
                                       classifierStateDir))
        return classifierStateSm_;
    const auto before = classifierStateSm_;
    const auto made = ClassifierStateSm::ClassifierStateSmIs(
        qosStatus, aclCliConfig, qosCliConfig, classifierConfigDir, classifierStateDir);
    // A subscriber of the state may have asked for a root machine meanwhile: the later one stays.
    if (classifierStateSm_ && !(classifierStateSm_ == before)) return classifierStateSm_;
    const auto old = std::exchange(classifierStateSm_, made);
    publishChange(kClassifierStateSm.id, &old);
    made->hasNotificationActiveIs(true);
    return made;
}

Orin::Ptr<ClassifierStateSm> ClassifierStateSmMounter::classifierStateSmDel() {
    const auto old = std::exchange(classifierStateSm_, nullptr);
    if (!old) return nullptr;
    publishChange(kClassifierStateSm.id, &old);
    old->hasNotificationActiveIs(false);
    return old;
}

}  // namespace QosOc
