#include "QosOpenConfig/QosOpenConfigClassifierStateSm/CmapTypeStatusSm.h"

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/Trace.h"
#include "platform/Vex/Derive.h"

namespace QosOc {
namespace {

using Orin::String;

constexpr auto kHandleInitialized =
    tracePoint("handleInitialized", "void QosOc::CmapTypeStatusSm::handleInitialized()", 451);
constexpr auto kHandleCmapStatus = tracePoint(
    "handleCmapStatus", "void QosOc::CmapTypeStatusSm::handleCmapStatus(const String&)", 434);
constexpr auto kDoPrepareToDie =
    tracePoint("doPrepareToDie", "void QosOc::CmapTypeStatusSm::doPrepareToDie()", 460);

}  // namespace

constinit const Vex::TypeRecord CmapTypeStatusSm::kTypeRecord = Vex::recordOf<CmapTypeStatusSm>();

CmapTypeStatusSm::CmapTypeStatusSm(const Orin::Ptr<const Qos::ClassMapTypeStatus>& cmapTypeStatus,
                                   const StateDir& classifierStateDir)
    : cmapTypeStatus_(cmapTypeStatus), classifierStateDir_(classifierStateDir) {
    start();
}

Orin::Ptr<CmapTypeStatusSm> CmapTypeStatusSm::CmapTypeStatusSmIs(
    const Orin::Ptr<const Qos::ClassMapTypeStatus>& cmapTypeStatus,
    const StateDir& classifierStateDir) {
    return create(cmapTypeStatus, classifierStateDir);
}

Orin::Ptr<CmapTypeStatusSm> cmapTypeStatusSmFactory(
    const Orin::Ptr<const Qos::ClassMapTypeStatus>& cmapTypeStatus,
    const StateDir& classifierStateDir) {
    return CmapTypeStatusSm::CmapTypeStatusSmIs(cmapTypeStatus, classifierStateDir);
}

const Orin::Ptr<CmapStatusSm>& CmapTypeStatusSm::cmapStatusSmIs(
    const Orin::Ptr<const Qos::ClassMapStatus>& cmapStatus, const StateDir& classifierStateDir) {
    return cmapStatusSm_.createOrKeep("cmapStatus", &Qos::ClassMapStatus::cmapName, cmapStatus,
                                      classifierStateDir);
}

Orin::Ptr<CmapStatusSm> CmapTypeStatusSm::cmapStatusSmDel(const String& cmapName) {
    return cmapStatusSm_.remove(cmapName);
}

void CmapTypeStatusSm::cmapStatusSmDelAll() {
    cmapStatusSm_.clear();
}

void CmapTypeStatusSm::handleInitialized() {
    traceOf(this, kHandleInitialized);
    for (const auto& member : cmapTypeStatus_->cmapStatus())
        handleCmapStatus(member.key);
}

void CmapTypeStatusSm::handleCmapStatus(const String& cmapName) {
    traceOf(this, kHandleCmapStatus, ", cmapName = ", cmapName);
    cmapStatusSm_.reconcile(
        cmapName, cmapTypeStatus_->cmapStatus(),
        [this](const auto& cmapStatus) { cmapStatusSmIs(cmapStatus, classifierStateDir_); });
}

void CmapTypeStatusSm::doPrepareToDie() {
    // Kept without the machine's address, unlike the others.
    trace(kDoPrepareToDie);
    for (const auto& member : cmapTypeStatus_->cmapStatus())
        cmapStatusSm_.prepareAndRemove(member.key);
}

}  // namespace QosOc

template class Vex::Reactor<QosOc::CmapTypeStatusSm>;
