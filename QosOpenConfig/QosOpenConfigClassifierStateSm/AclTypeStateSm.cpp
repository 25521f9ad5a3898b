#include "QosOpenConfig/QosOpenConfigClassifierStateSm/AclTypeStateSm.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

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

using AclConfigs = Acl::Input::AclTypeConfig::AclConfigs;

/// A classifier that access lists name, and how many of them are configured.
struct NamedClassifier {
    String name;
    std::size_t configured = 0;
};

/// The classifiers in the order of their lists. Those of one classifier are neighbours, as their
/// names begin with its name.
class NamedClassifiers {
public:
    void add(const String& classifierName, bool isConfigured) {
        if (classifiers_.empty() || !(classifiers_.back().name == classifierName))
            classifiers_.push_back({classifierName});
        classifiers_.back().configured += isConfigured ? 1 : 0;
    }
    auto begin() const noexcept { return classifiers_.begin(); }
    auto end() const noexcept { return classifiers_.end(); }

private:
    std::vector<NamedClassifier> classifiers_;
};

/// False if each of the classifier's terms is that of a configured list. Counting them is enough
/// where the terms of all such lists are there.
bool hasOtherTerms(const State::ClassifiersDir& root, const NamedClassifier& named) {
    const State::Classifier* classifier = root.classifier(named.name);
    return classifier != nullptr && classifier->terms() != nullptr &&
           classifier->terms()->term().size() != named.configured;
}

/// Takes away the conditions of terms that no list stands for.
void removeStaleConditions(const StateDir& root, State::Classifier& classifier,
                           const AclConfigs& lists) {
    // They may go with what is told.
    const Orin::Ptr<const State::Classifier> held(&classifier);
    const Orin::Ptr<State::Terms> terms(classifier.terms());
    if (!terms) return;
    const String& name = classifier.name();
    for (const auto& member : terms->term()) {
        if (!member.value.conditions) continue;
        const std::string aclName = configObjName(name, member.key);
        if (lists.find(std::string_view(aclName)) == nullptr)
            deleteClassifierTermCondition(root, name, member.key, true);
    }
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
    const std::uint32_t removalsBefore = stateRemovals();
    for (const auto& member : aclTypeConfig_->aclConfig()) {
        const ClassifierKey& key = classifierKeyFromConfigObjName(member.key);
        if (!key.isTerm()) continue;
        named.add(key.classifierName, member.value != nullptr);
        handleAclConfig(member.key);
    }
    traceOf(this, kHandleInitializedStale, ", removing the stale entries");
    const bool isComplete = stateRemovals() == removalsBefore;
    std::unordered_set<String> suspects;
    for (const NamedClassifier& classifier : named)
        if (!isComplete || hasOtherTerms(*classifierStateDir_, classifier))
            suspects.insert(classifier.name);
    if (suspects.empty()) return;
    for (const auto& member : classifierStateDir_->classifier())
        if (suspects.contains(member.key))
            removeStaleConditions(classifierStateDir_, *member.value, aclTypeConfig_->aclConfig());
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
