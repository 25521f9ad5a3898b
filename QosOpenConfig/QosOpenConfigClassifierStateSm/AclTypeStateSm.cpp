#include "QosOpenConfig/QosOpenConfigClassifierStateSm/AclTypeStateSm.h"

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/Trace.h"
#include "platform/QosOc/Naming.h"
#include "platform/Vex/Derive.h"
#include "platform/Vex/RecordedMap.h"

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

const String& itself(const String& id) noexcept {
    return id;
}

/// A classifier, and the ids of its terms that access lists name.
struct NamedClassifier {
    String name;
    Vex::RecordedMap<String, &itself> termIds;
};
using NamedClassifiers = Vex::RecordedMap<NamedClassifier, &NamedClassifier::name>;

void addTerm(NamedClassifiers& named, const ClassifierKey& key) {
    NamedClassifier* classifier = named.find(key.classifierName);
    if (classifier == nullptr) classifier = &named.is({key.classifierName, {}});
    classifier->termIds.is(key.termId);
}

/// Removes the conditions of the terms that no access list names.
void removeStaleConditions(const StateDir& root, State::Classifier& classifier,
                           const NamedClassifier& named) {
    // A subscriber may remove both.
    const auto held = Orin::Ptr<const State::Classifier>::sharing(&classifier);
    const auto terms = Orin::Ptr<State::Terms>::sharing(classifier.terms());
    if (!terms) return;
    for (const auto& member : terms->term())
        if (member.value.conditions && named.termIds.find(member.key) == nullptr)
            deleteClassifierTermCondition(root, named.name, member.key, true);
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

const Orin::Ptr<AclStateSm>& AclTypeStateSm::aclStateSmIs(
    const Orin::Ptr<const Acl::AclConfig>& aclConfig, const StateDir& classifierStateDir) {
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
    NamedClassifiers named;
    for (const auto& member : aclTypeConfig_->aclConfig()) {
        const ClassifierKey& key = classifierKeyFromConfigObjName(member.key);
        if (!key.isTerm()) continue;
        handleAclConfig(member.key);
        addTerm(named, key);
    }
    traceOf(this, kHandleInitializedStale, ", removing the stale entries");
    for (const auto& member : classifierStateDir_->classifier())
        if (const NamedClassifier* classifier = named.find(member.key))
            removeStaleConditions(classifierStateDir_, *member.value, *classifier);
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
