#include "QosOpenConfig/QosOpenConfigClassifierStateSm/PmapTypeStatusSm.h"

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/Trace.h"
#include "platform/QosOc/Naming.h"
#include "platform/Vex/Derive.h"

namespace QosOc {
namespace {

using Orin::String;

constexpr auto kHandleInitialized =
    pmapTracePoint("handleInitialized", "void QosOc::PmapTypeStatusSm::handleInitialized()");
constexpr auto kHandlePmapStatus = pmapTracePoint(
    "handlePmapStatus", "void QosOc::PmapTypeStatusSm::handlePmapStatus(const String&)");
constexpr auto kUpdateClassifiersWithPmap =
    pmapTracePoint("updateClassifiersWithPmap",
                   "void QosOc::PmapTypeStatusSm::updateClassifiersWithPmap(const String&, "
                   "QosOc::Classifier::Type, bool)");
constexpr auto kDoPrepareToDie =
    pmapTracePoint("doPrepareToDie", "void QosOc::PmapTypeStatusSm::doPrepareToDie()");

}  // namespace

constinit const Vex::TypeRecord PmapTypeStatusSm::kTypeRecord = Vex::recordOf<PmapTypeStatusSm>();

PmapTypeStatusSm::PmapTypeStatusSm(
    const Orin::Ptr<const Qos::PolicyMapTypeStatus>& pmapTypeStatus,
    const Orin::Ptr<const Qos::Input::Config>& cliConfig,
    const Orin::Ptr<const Config::ClassifiersDir>& classifierConfigDir,
    const Orin::Ptr<ClassifiersWithPmap>& classifiersWithPmap, const StateDir& classifierStateDir)
    : pmapTypeStatus_(pmapTypeStatus),
      cliConfig_(cliConfig),
      classifierConfigDir_(classifierConfigDir),
      classifiersWithPmap_(classifiersWithPmap),
      classifierStateDir_(classifierStateDir) {
    start();
}

Orin::Ptr<PmapTypeStatusSm> PmapTypeStatusSm::PmapTypeStatusSmIs(
    const Orin::Ptr<const Qos::PolicyMapTypeStatus>& pmapTypeStatus,
    const Orin::Ptr<const Qos::Input::Config>& cliConfig,
    const Orin::Ptr<const Config::ClassifiersDir>& classifierConfigDir,
    const Orin::Ptr<ClassifiersWithPmap>& classifiersWithPmap, const StateDir& classifierStateDir) {
    return create(pmapTypeStatus, cliConfig, classifierConfigDir, classifiersWithPmap,
                  classifierStateDir);
}

Orin::Ptr<PmapTypeStatusSm> pmapTypeStatusSmFactory(
    const Orin::Ptr<const Qos::PolicyMapTypeStatus>& pmapTypeStatus,
    const Orin::Ptr<const Qos::Input::Config>& cliConfig,
    const Orin::Ptr<const Config::ClassifiersDir>& classifierConfigDir,
    const Orin::Ptr<ClassifiersWithPmap>& classifiersWithPmap, const StateDir& classifierStateDir) {
    return PmapTypeStatusSm::PmapTypeStatusSmIs(pmapTypeStatus, cliConfig, classifierConfigDir,
                                                classifiersWithPmap, classifierStateDir);
}

const Orin::Ptr<PmapStatusSm>& PmapTypeStatusSm::pmapStatusSmIs(
    const Orin::Ptr<const Qos::PolicyMapStatus>& pmapStatus,
    const Orin::Ptr<const Qos::Input::Config>& cliConfig,
    const Orin::Ptr<const Config::ClassifiersDir>& classifierConfigDir,
    const StateDir& classifierStateDir) {
    return pmapStatusSm_.createOrKeep("pmapStatus", &Qos::PolicyMapStatus::pmapName, pmapStatus,
                                      cliConfig, classifierConfigDir, classifierStateDir);
}

Orin::Ptr<PmapStatusSm> PmapTypeStatusSm::pmapStatusSmDel(const String& pmapName) {
    return pmapStatusSm_.remove(pmapName);
}

void PmapTypeStatusSm::pmapStatusSmDelAll() {
    pmapStatusSm_.clear();
}

void PmapTypeStatusSm::handleInitialized() {
    traceOf(this, kHandleInitialized);
    for (const auto& member : pmapTypeStatus_->pmapStatus())
        handlePmapStatus(member.key);
}

void PmapTypeStatusSm::handlePmapStatus(const String& pmapName) {
    traceOf(this, kHandlePmapStatus, ", pmapName = ", pmapName);
    const PmapClassifiers& classifiers = classifiersFromPmapName(pmapName);
    if (classifiers == PmapClassifiers()) return;
    const auto& pmapStatus = pmapTypeStatus_->pmapStatus();
    const bool isPresent = pmapStatus.find(pmapName) != nullptr;
    updateClassifiersWithPmap(classifiers.ipv4ClassifierName, Classifier::Type::IPV4, isPresent);
    updateClassifiersWithPmap(classifiers.ipv6ClassifierName, Classifier::Type::IPV6, isPresent);
    pmapStatusSm_.reconcile(pmapName, pmapStatus, [this](const auto& present) {
        pmapStatusSmIs(present, cliConfig_, classifierConfigDir_, classifierStateDir_);
    });
}

void PmapTypeStatusSm::updateClassifiersWithPmap(const String& classifierName,
                                                 Classifier::Type classifierType, bool add) {
    traceOf(this, kUpdateClassifiersWithPmap, ", classifierName = ", classifierName,
            ", classifierType = ", classifierType, ", add = ", add);
    if (classifierName.empty()) {
        traceOf(this, kUpdateClassifiersWithPmap, ", classifierName should not be empty");
        return;
    }
    const Config::ClassifierConfig key{classifierName, classifierType};
    const unsigned* count = classifiersWithPmap_->classifier().find(key);
    if (add)
        classifiersWithPmap_->classifierIs(key, count == nullptr ? 1 : *count + 1);
    else if (count != nullptr && *count == 1)
        classifiersWithPmap_->classifierDel(key);
    else if (count != nullptr)
        classifiersWithPmap_->classifierIs(key, *count - 1);
}

void PmapTypeStatusSm::doPrepareToDie() {
    traceOf(this, kDoPrepareToDie);
    for (const auto& member : pmapTypeStatus_->pmapStatus()) {
        const PmapClassifiers& classifiers = classifiersFromPmapName(member.key);
        updateClassifiersWithPmap(classifiers.ipv4ClassifierName, Classifier::Type::IPV4, false);
        updateClassifiersWithPmap(classifiers.ipv6ClassifierName, Classifier::Type::IPV6, false);
        pmapStatusSm_.prepareAndRemove(member.key);
    }
}

}  // namespace QosOc

template class Vex::Reactor<QosOc::PmapTypeStatusSm>;
