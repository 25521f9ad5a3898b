#include "QosOpenConfig/QosOpenConfigClassifierStateSm/CmapStatusSm.h"

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/Trace.h"
#include "platform/QosOc/Naming.h"
#include "platform/Vex/Derive.h"

namespace QosOc {
namespace {

using Orin::String;

constexpr auto kHandleInitialized =
    tracePoint("handleInitialized", "void QosOc::CmapStatusSm::handleInitialized()", 425);
constexpr auto kHandleCmapStatusMatch =
    tracePoint("handleCmapStatusMatch",
               "void QosOc::CmapStatusSm::handleCmapStatusMatch(Qos::ClassMapMatchOption)", 387);
constexpr auto kDoPrepareToDie =
    tracePoint("doPrepareToDie", "void QosOc::CmapStatusSm::doPrepareToDie()", 408);

}  // namespace

constinit const Vex::TypeRecord CmapStatusSm::kTypeRecord = Vex::recordOf<CmapStatusSm>();

CmapStatusSm::CmapStatusSm(const Orin::Ptr<const Qos::ClassMapStatus>& cmapStatus,
                           const StateDir& classifierStateDir)
    : cmapStatus_(cmapStatus), classifierStateDir_(classifierStateDir) {
    start();
}

Orin::Ptr<CmapStatusSm> CmapStatusSm::CmapStatusSmIs(
    const Orin::Ptr<const Qos::ClassMapStatus>& cmapStatus, const StateDir& classifierStateDir) {
    return create(cmapStatus, classifierStateDir);
}

Orin::Ptr<CmapStatusSm> cmapStatusSmFactory(const Orin::Ptr<const Qos::ClassMapStatus>& cmapStatus,
                                            const StateDir& classifierStateDir) {
    return CmapStatusSm::CmapStatusSmIs(cmapStatus, classifierStateDir);
}

const String& CmapStatusSm::cmapName() const noexcept {
    return cmapStatus_ ? cmapStatus_->cmapName() : String::none();
}

void CmapStatusSm::handleInitialized() {
    traceOf(this, kHandleInitialized);
    if (!cmapStatus_) return;
    for (const auto& member : cmapStatus_->match())
        handleCmapStatusMatch(member.key);
}

void CmapStatusSm::handleCmapStatusMatch(Qos::ClassMapMatchOption option) {
    traceOf(this, kHandleCmapStatusMatch, ", option = ", option);
    const bool isPresent = cmapStatus_ && cmapStatus_->match().find(option) != nullptr;
    const auto type = isPresent ? classifierTypeFromMatchOption(option) : Classifier::Type::IPV4;
    const ClassifierKey& key = classifierKeyFromConfigObjName(cmapName());
    if (key.isTerm())
        addClassifierTerm(classifierStateDir_, key.classifierName, type, key.termId);
    else if (const String className = classifierNameFromClassName(cmapName()); !className.empty())
        addClassifier(classifierStateDir_, className, type);
}

void CmapStatusSm::doPrepareToDie() {
    traceOf(this, kDoPrepareToDie);
    const ClassifierKey& key = classifierKeyFromConfigObjName(cmapName());
    if (key.isTerm())
        deleteClassifierTerm(classifierStateDir_, key.classifierName, key.termId);
    else if (const String className = classifierNameFromClassName(cmapName()); !className.empty())
        deleteClassifier(classifierStateDir_, className);
}

}  // namespace QosOc

template class Vex::Reactor<QosOc::CmapStatusSm>;
