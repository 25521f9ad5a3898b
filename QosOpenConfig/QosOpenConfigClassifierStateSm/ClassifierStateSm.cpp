#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifierStateSm.h"

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/Trace.h"
#include "platform/Vex/Assert.h"
#include "platform/Vex/Derive.h"

namespace QosOc {
namespace {

using Orin::String;

constexpr auto kHandlePmapTypeStatus =
    tracePoint("handlePmapTypeStatus",
               "void QosOc::ClassifierStateSm::handlePmapTypeStatus(Qos::MapType)", 821);
constexpr auto kHandlePmapTypeStatusOther =
    tracePoint("handlePmapTypeStatus",
               "void QosOc::ClassifierStateSm::handlePmapTypeStatus(Qos::MapType)", 824);
constexpr auto kHandleCmapTypeStatus =
    tracePoint("handleCmapTypeStatus",
               "void QosOc::ClassifierStateSm::handleCmapTypeStatus(Qos::MapType)", 847);
constexpr auto kHandleCmapTypeStatusOther =
    tracePoint("handleCmapTypeStatus",
               "void QosOc::ClassifierStateSm::handleCmapTypeStatus(Qos::MapType)", 850);
constexpr auto kHandleAclTypeConfig = tracePoint(
    "handleAclTypeConfig", "void QosOc::ClassifierStateSm::handleAclTypeConfig(Acl::AclType)", 869);
constexpr auto kHandleAclTypeConfigOther = tracePoint(
    "handleAclTypeConfig", "void QosOc::ClassifierStateSm::handleAclTypeConfig(Acl::AclType)", 872);
constexpr auto kHandleClassifierConfig =
    tracePoint("handleClassifierConfig",
               "void QosOc::ClassifierStateSm::handleClassifierConfig(const String&)", 891);
constexpr auto kHandleInitialized =
    tracePoint("handleInitialized", "void QosOc::ClassifierStateSm::handleInitialized()", 907);

void assertMounted(bool isMounted, const char* input) {
    Vex::assertThat(isMounted, input, kSource, kHandleInitialized.line,
                    kHandleInitialized.signature);
}

}  // namespace

constinit const Vex::TypeRecord ClassifierStateSm::kTypeRecord = Vex::recordOf<ClassifierStateSm>();

ClassifierStateSm::ClassifierStateSm(const QosStatus& qosStatus, const AclConfig& aclCliConfig,
                                     const QosConfig& qosCliConfig,
                                     const ConfigDir& classifierConfigDir,
                                     const StateDir& classifierStateDir)
    : qosStatus_(qosStatus),
      aclCliConfig_(aclCliConfig),
      qosCliConfig_(qosCliConfig),
      classifierConfigDir_(classifierConfigDir),
      classifierStateDir_(classifierStateDir) {
    start();
}

Orin::Ptr<ClassifierStateSm> ClassifierStateSm::ClassifierStateSmIs(
    const QosStatus& qosStatus, const AclConfig& aclCliConfig, const QosConfig& qosCliConfig,
    const ConfigDir& classifierConfigDir, const StateDir& classifierStateDir) {
    return create(qosStatus, aclCliConfig, qosCliConfig, classifierConfigDir, classifierStateDir);
}

Orin::Ptr<ClassifierStateSm> classifierStateSmFactory(
    const ClassifierStateSm::QosStatus& qosStatus, const ClassifierStateSm::AclConfig& aclCliConfig,
    const ClassifierStateSm::QosConfig& qosCliConfig,
    const ClassifierStateSm::ConfigDir& classifierConfigDir, const StateDir& classifierStateDir) {
    return ClassifierStateSm::ClassifierStateSmIs(qosStatus, aclCliConfig, qosCliConfig,
                                                  classifierConfigDir, classifierStateDir);
}

const Orin::Ptr<PmapTypeStatusSm>& ClassifierStateSm::pmapTypeStatusSmIs(
    const Orin::Ptr<const Qos::PolicyMapTypeStatus>& pmapTypeStatus, const QosConfig& qosCliConfig,
    const ConfigDir& classifierConfigDir, const Registry& classifiersWithPmap,
    const StateDir& classifierStateDir) {
    return pmapTypeStatusSm_.createOrKeep("pmapTypeStatus", &Qos::PolicyMapTypeStatus::mapType,
                                          pmapTypeStatus, qosCliConfig, classifierConfigDir,
                                          classifiersWithPmap, classifierStateDir);
}

Orin::Ptr<PmapTypeStatusSm> ClassifierStateSm::pmapTypeStatusSmDel(Qos::MapType mapType) {
    return pmapTypeStatusSm_.remove(mapType);
}

void ClassifierStateSm::pmapTypeStatusSmDelAll() {
    pmapTypeStatusSm_.clear();
}

const Orin::Ptr<CmapTypeStatusSm>& ClassifierStateSm::cmapTypeStatusSmIs(
    const Orin::Ptr<const Qos::ClassMapTypeStatus>& cmapTypeStatus,
    const StateDir& classifierStateDir) {
    return cmapTypeStatusSm_.createOrKeep("cmapTypeStatus", &Qos::ClassMapTypeStatus::mapType,
                                          cmapTypeStatus, classifierStateDir);
}

Orin::Ptr<CmapTypeStatusSm> ClassifierStateSm::cmapTypeStatusSmDel(Qos::MapType mapType) {
    return cmapTypeStatusSm_.remove(mapType);
}

void ClassifierStateSm::cmapTypeStatusSmDelAll() {
    cmapTypeStatusSm_.clear();
}

const Orin::Ptr<AclTypeStateSm>& ClassifierStateSm::aclTypeStateSmIs(
    const Orin::Ptr<const Acl::Input::AclTypeConfig>& aclTypeConfig,
    const StateDir& classifierStateDir) {
    return aclTypeStateSm_.createOrKeep("aclTypeConfig", &Acl::Input::AclTypeConfig::aclType,
                                        aclTypeConfig, classifierStateDir);
}

Orin::Ptr<AclTypeStateSm> ClassifierStateSm::aclTypeStateSmDel(Acl::AclType aclType) {
    return aclTypeStateSm_.remove(aclType);
}

void ClassifierStateSm::aclTypeStateSmDelAll() {
    aclTypeStateSm_.clear();
}

const Orin::Ptr<ClassifierConfigSm>& ClassifierStateSm::classifierConfigSmIs(
    const Orin::Ptr<const Config::Classifier>& classifier, const Registry& classifiersWithPmap,
    const StateDir& classifierStateDir) {
    return classifierConfigSm_.createOrKeep(
        "classifierConfig", &Config::Classifier::name, classifier,
        Orin::Ptr<const ClassifiersWithPmap>(classifiersWithPmap), classifierStateDir);
}

Orin::Ptr<ClassifierConfigSm> ClassifierStateSm::classifierConfigSmDel(const String& name) {
    return classifierConfigSm_.remove(name);
}

void ClassifierStateSm::classifierConfigSmDelAll() {
    classifierConfigSm_.clear();
}

// Policy maps come first: they fill the registry that the classifier configuration machines read.
void ClassifierStateSm::handleInitialized() {
    traceOf(this, kHandleInitialized);
    assertMounted(static_cast<bool>(qosStatus_), "qosStatus");
    assertMounted(static_cast<bool>(aclCliConfig_), "aclCliConfig");
    assertMounted(static_cast<bool>(classifierConfigDir_), "classifierConfigDir");
    assertMounted(static_cast<bool>(classifierStateDir_), "classifierStateDir");
    classifiersWithPmap_ = ClassifiersWithPmap::ClassifiersWithPmapIs();
    for (const auto& member : qosStatus_->pmapTypeStatus())
        handlePmapTypeStatus(member.key);
    for (const auto& member : qosStatus_->cmapTypeStatus())
        handleCmapTypeStatus(member.key);
    for (const auto& member : aclCliConfig_->aclTypeConfig())
        handleAclTypeConfig(member.key);
    for (const auto& member : classifierConfigDir_->classifier())
        handleClassifierConfig(member.key);
}

void ClassifierStateSm::handlePmapTypeStatus(Qos::MapType mapType) {
    traceOf(this, kHandlePmapTypeStatus, ", pmapType = ", mapType);
    if (mapType != Qos::MapType::mapQos) {
        traceOf(this, kHandlePmapTypeStatusOther, ", pmapType = ", mapType,
                " is not mapQos, skipping");
        return;
    }
    pmapTypeStatusSm_.reconcile(mapType, qosStatus_->pmapTypeStatus(), [this](const auto& present) {
        pmapTypeStatusSmIs(present, qosCliConfig_, classifierConfigDir_.notifier(),
                           classifiersWithPmap_, classifierStateDir_);
    });
}

void ClassifierStateSm::handleCmapTypeStatus(Qos::MapType mapType) {
    traceOf(this, kHandleCmapTypeStatus, ", cmapType = ", mapType);
    if (mapType != Qos::MapType::mapQos) {
        traceOf(this, kHandleCmapTypeStatusOther, ", cmapType = ", mapType,
                " is not mapQos, skipping");
        return;
    }
    cmapTypeStatusSm_.reconcile(mapType, qosStatus_->cmapTypeStatus(), [this](const auto& present) {
        cmapTypeStatusSmIs(present, classifierStateDir_);
    });
}

void ClassifierStateSm::handleAclTypeConfig(Acl::AclType aclType) {
    traceOf(this, kHandleAclTypeConfig);
    if (aclType > Acl::AclType::ipv6) {
        traceOf(this, kHandleAclTypeConfigOther, ", ACL should be of the type IPV4 or IPV6");
        return;
    }
    aclTypeStateSm_.reconcile(aclType, aclCliConfig_->aclTypeConfig(), [this](const auto& present) {
        aclTypeStateSmIs(present, classifierStateDir_);
    });
}

void ClassifierStateSm::handleClassifierConfig(const String& name) {
    traceOf(this, kHandleClassifierConfig, ", classifierName = ", name);
    classifierConfigSm_.reconcile(
        name, classifierConfigDir_->classifier(), [this](const auto& present) {
            classifierConfigSmIs(present, classifiersWithPmap_, classifierStateDir_);
        });
}

void ClassifierStateSm::takeStateBack() {
    const auto takeBack = [](auto& children) {
        for (const auto& member : children.members())
            children.prepareAndRemove(member.key);
    };
    takeBack(pmapTypeStatusSm_);
    takeBack(cmapTypeStatusSm_);
    takeBack(aclTypeStateSm_);
    takeBack(classifierConfigSm_);
}

}  // namespace QosOc

template class Vex::Reactor<QosOc::ClassifierStateSm>;
