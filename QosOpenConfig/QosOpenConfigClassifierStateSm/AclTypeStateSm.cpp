#include "QosOpenConfig/QosOpenConfigClassifierStateSm/AclTypeStateSm.h"

#include <unordered_map>
#include <unordered_set>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/Trace.h"
#include "platform/QosOc/Naming.h"
#include "platform/Vex/Derive.h"

namespace QosOc {
namespace {

using Orin::String;

constexpr auto kHandleAclConfig = tracePoint(
    "handleAclConfig", "void QosOc::AclTypeStateSm::handleAclConfig(const String&)", 322);
constexpr auto kDoPrepareToDie =
    tracePoint("doPrepareToDie", "void QosOc::AclTypeStateSm::doPrepareToDie()", 335);
constexpr auto kHandleInitialized =
    tracePoint("handleInitialized", "void QosOc::AclTypeStateSm::handleInitialized()", 347);
constexpr auto kHandleInitializedStale =
    tracePoint("handleInitialized", "void QosOc::AclTypeStateSm::handleInitialized()", 363);

/// The terms that access lists stand for, by classifier.
using TermIds = std::unordered_set<String>;
using ClassifierTerms = std::unordered_map<String, TermIds>;

void removeConditionsExcept(const StateDir& root, const State::Classifier& classifier,
                            const TermIds& termIds) {
    if (classifier.terms() == nullptr) return;
    for (const auto& member : classifier.terms()->term())
        if (member.value.conditions && !termIds.contains(member.key))
            deleteClassifierTermCondition(root, classifier.name(), member.key, true);
}

}  // namespace

constinit const Vex::TypeRecord AclTypeStateSm::kTypeRecord = Vex::recordOf<AclTypeStateSm>();

AclTypeStateSm::AclTypeStateSm(const Orin::Ptr<const Acl::Input::AclTypeConfig>& aclTypeConfig,
                               const StateDir& classifierStateDir)
    : aclTypeConfig_(aclTypeConfig), classifierStateDir_(classifierStateDir) {
    start();
}

Orin::Ptr<AclTypeStateSm> AclTypeStateSm::AclTypeStateSmIs(
    const Orin::Ptr<const Acl::Input::AclTypeConfig>& aclTypeConfig,
    const StateDir& classifierStateDir) {
    return create(aclTypeConfig, classifierStateDir);
}

Orin::Ptr<AclTypeStateSm> aclTypeStateSmFactory(
    const Orin::Ptr<const Acl::Input::AclTypeConfig>& aclTypeConfig,
    const StateDir& classifierStateDir) {
    return AclTypeStateSm::AclTypeStateSmIs(aclTypeConfig, classifierStateDir);
}

Orin::Ptr<AclStateSm> AclTypeStateSm::aclStateSmIs(const Orin::Ptr<const Acl::AclConfig>& aclConfig,
                                                   const StateDir& classifierStateDir) {
    return aclStateSm_.createOrKeep("aclConfig", &Acl::AclConfig::aclName, aclConfig,
                                    classifierStateDir);
}

Orin::Ptr<AclStateSm> AclTypeStateSm::aclStateSmDel(const String& aclName) {
    return aclStateSm_.remove(aclName);
}

void AclTypeStateSm::aclStateSmDelAll() {
    aclStateSm_.clear();
}

void AclTypeStateSm::handleInitialized() {
    traceOf(this, kHandleInitialized);
    ClassifierTerms aclClassifierTerms;
    for (const auto& member : aclTypeConfig_->aclConfig()) {
        const ClassifierKey& key = classifierKeyFromConfigObjName(member.key);
        if (!key.isTerm()) continue;
        handleAclConfig(member.key);
        aclClassifierTerms[key.classifierName].insert(key.termId);
    }
    traceOf(this, kHandleInitializedStale, ", removing the stale entries");
    // No lines are due for the classifiers passed over, so only those that lists name are visited.
    for (const auto& [classifierName, termIds] : aclClassifierTerms)
        if (const State::Classifier* classifier = classifierStateDir_->classifier(classifierName))
            removeConditionsExcept(classifierStateDir_, *classifier, termIds);
}

void AclTypeStateSm::handleAclConfig(const String& aclName) {
    traceOf(this, kHandleAclConfig, ", aclName = ", aclName);
    aclStateSm_.reconcile(aclName, aclTypeConfig_->aclConfig(), [this](const auto& aclConfig) {
        aclStateSmIs(aclConfig, classifierStateDir_);
    });
}

void AclTypeStateSm::doPrepareToDie() {
    traceOf(this, kDoPrepareToDie);
    for (const auto& member : aclTypeConfig_->aclConfig())
        aclStateSm_.prepareAndRemove(member.key);
}

}  // namespace QosOc

template class Vex::Reactor<QosOc::AclTypeStateSm>;
