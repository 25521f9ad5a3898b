#include "QosOpenConfig/QosOpenConfigClassifierStateSm/AclStateSm.h"

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/Trace.h"
#include "platform/QosOc/Naming.h"
#include "platform/Vex/Derive.h"
#include "platform/Vex/Errors.h"

namespace QosOc {
namespace {

constexpr auto kHandleInitialized =
    tracePoint("handleInitialized", "void QosOc::AclStateSm::handleInitialized()", 304);
constexpr auto kHandleAclSubConfig =
    tracePoint("handleAclSubConfig", "void QosOc::AclStateSm::handleAclSubConfig()", 273);
constexpr auto kDoPrepareToDie =
    tracePoint("doPrepareToDie", "void QosOc::AclStateSm::doPrepareToDie()", 287);

}  // namespace

constinit const Vex::TypeRecord AclStateSm::kTypeRecord = Vex::recordOf<AclStateSm>();

AclStateSm::AclStateSm(const Orin::Ptr<const Acl::AclConfig>& aclConfig,
                       const StateDir& classifierStateDir)
    : aclConfig_(aclConfig), classifierStateDir_(classifierStateDir) {
    start();
}

Orin::Ptr<AclStateSm> AclStateSm::AclStateSmIs(const Orin::Ptr<const Acl::AclConfig>& aclConfig,
                                               const StateDir& classifierStateDir) {
    return create(aclConfig, classifierStateDir);
}

Orin::Ptr<AclStateSm> aclStateSmFactory(const Orin::Ptr<const Acl::AclConfig>& aclConfig,
                                        const StateDir& classifierStateDir) {
    return AclStateSm::AclStateSmIs(aclConfig, classifierStateDir);
}

const Orin::Ptr<AclSubStateSm>& AclStateSm::aclSubStateSmIs(
    const Orin::Ptr<const Acl::AclSubConfig>& aclSubConfig,
    const Orin::Ptr<const AclNameAndType>& aclNameAndType, const StateDir& classifierStateDir) {
    if (!aclSubConfig) Vex::throwMutatorArgNullPointerException("aclSubConfig");
    return aclSubStateSm_.createOrReplace(aclSubConfig, aclNameAndType, classifierStateDir);
}

Orin::Ptr<AclSubStateSm> AclStateSm::aclSubStateSmDel() {
    return aclSubStateSm_.remove();
}

void AclStateSm::handleInitialized() {
    traceOf(this, kHandleInitialized);
    const Acl::AclType aclType = aclConfig_->aclType();
    aclNameAndType_ = AclNameAndType::create(aclConfig_->aclName(), aclType);
    const ClassifierKey& key = classifierKeyFromConfigObjName(aclConfig_->aclName());
    if (key.isTerm())
        addClassifierTerm(classifierStateDir_, key.classifierName,
                          classifierTypeFromAclType(aclType), key.termId);
    handleAclSubConfig();
}

void AclStateSm::handleAclSubConfig() {
    traceOf(this, kHandleAclSubConfig);
    const bool isLive =
        aclSubStateSm_.reconcile(aclConfig_->aclSubConfig(), [this](const auto& aclSubConfig) {
            aclSubStateSmIs(aclSubConfig, aclNameAndType_, classifierStateDir_);
        });
    // This machine took back its state while its child was working. The child has emptied the
    // conditions since then, so remove them again.
    if (!isLive) removeConditions();
}

void AclStateSm::doPrepareToDie() {
    traceOf(this, kDoPrepareToDie);
    aclSubStateSm_.prepareAndRemove();
    removeConditions();
}

void AclStateSm::removeConditions() {
    const ClassifierKey& key = classifierKeyFromConfigObjName(aclConfig_->aclName());
    // The child has emptied the conditions. The list is gone, so remove the container, too.
    if (key.isTerm())
        deleteClassifierTermCondition(classifierStateDir_, key.classifierName, key.termId, true);
}

}  // namespace QosOc

template class Vex::Reactor<QosOc::AclStateSm>;
