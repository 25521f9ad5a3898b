#include "QosOpenConfig/QosOpenConfigClassifierStateSm/PmapStatusSm.h"

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/Trace.h"
#include "platform/Vex/Assert.h"
#include "platform/Vex/Derive.h"

namespace QosOc {
namespace {

using Orin::String;

constexpr auto kHandleInitialized =
    pmapTracePoint("handleInitialized", "void QosOc::PmapStatusSm::handleInitialized()");
constexpr auto kDoPrepareToDie =
    pmapTracePoint("doPrepareToDie", "void QosOc::PmapStatusSm::doPrepareToDie()");
constexpr auto kUpdateClassifierTermActions = pmapTracePoint(
    "updateClassifierTermActions",
    "QosOc::ClassifierMetaData::Ptr QosOc::PmapStatusSm::updateClassifierTermActions()");
constexpr auto kHandlePmapStatusVersionUpdate = pmapTracePoint(
    "handlePmapStatusVersionUpdate", "void QosOc::PmapStatusSm::handlePmapStatusVersionUpdate()");
constexpr auto kHandleForwardingGroupNameToTcMap =
    pmapTracePoint("handleForwardingGroupNameToTcMap",
                   "void QosOc::PmapStatusSm::handleForwardingGroupNameToTcMap()");

}  // namespace

constinit const Vex::TypeRecord PmapStatusSm::kTypeRecord = Vex::recordOf<PmapStatusSm>();

PmapStatusSm::VexCliConfig::VexCliConfig(Notifier notifier, PmapStatusSm& owner)
    : NotifieeConst(std::move(notifier)), owner_(owner) {}

void PmapStatusSm::VexCliConfig::onAttribute(Orin::AttributeId attributeId, const void*) {
    if (attributeId != Qos::Input::Config::kForwardingGroupNameToTcMap.id) return;
    owner_.vex_CliConfig_ForwardingGroupNameToTcMapInIs(notifier()->forwardingGroupNameToTcMap());
}

PmapStatusSm::VexVex_CliConfig_ForwardingGroupNameToTcMapIn::
    VexVex_CliConfig_ForwardingGroupNameToTcMapIn(Notifier notifier, PmapStatusSm& owner)
    : NotifieeConst(std::move(notifier)), owner_(owner) {}

void PmapStatusSm::VexVex_CliConfig_ForwardingGroupNameToTcMapIn::onAttribute(
    Orin::AttributeId attributeId, const void*) {
    if (attributeId == Qos::ForwardingGroupNameToTcMap::kTc.id && !zombie())
        owner_.handleForwardingGroupNameToTcMap();
}

PmapStatusSm::PmapStatusSm(const Orin::Ptr<const Qos::PolicyMapStatus>& pmapStatus,
                           const Orin::Ptr<const Qos::Input::Config>& cliConfig,
                           const Orin::Ptr<const Config::ClassifiersDir>& classifierConfigDir,
                           const StateDir& classifierStateDir)
    : pmapStatus_(pmapStatus),
      cliConfig_(std::in_place, cliConfig, *this),
      classifierConfigDir_(classifierConfigDir),
      classifierStateDir_(classifierStateDir) {
    if (!pmapStatus_) {
        startIdle();
        return;
    }
    // The first computation reads the map through the configuration; only then it is watched.
    start();
    vex_CliConfig_ForwardingGroupNameToTcMapInIs(cliConfig ? cliConfig->forwardingGroupNameToTcMap()
                                                           : nullptr);
}

Orin::Ptr<PmapStatusSm> PmapStatusSm::PmapStatusSmIs(
    const Orin::Ptr<const Qos::PolicyMapStatus>& pmapStatus,
    const Orin::Ptr<const Qos::Input::Config>& cliConfig,
    const Orin::Ptr<const Config::ClassifiersDir>& classifierConfigDir,
    const StateDir& classifierStateDir) {
    return create(pmapStatus, cliConfig, classifierConfigDir, classifierStateDir);
}

Orin::Ptr<PmapStatusSm> pmapStatusSmFactory(
    const Orin::Ptr<const Qos::PolicyMapStatus>& pmapStatus,
    const Orin::Ptr<const Qos::Input::Config>& cliConfig,
    const Orin::Ptr<const Config::ClassifiersDir>& classifierConfigDir,
    const StateDir& classifierStateDir) {
    return PmapStatusSm::PmapStatusSmIs(pmapStatus, cliConfig, classifierConfigDir,
                                        classifierStateDir);
}

void PmapStatusSm::vex_CliConfig_ForwardingGroupNameToTcMapInIs(const TcMap& map) {
    auto* const reactor = vex_CliConfig_ForwardingGroupNameToTcMapIn_.get();
    if (reactor == nullptr)
        vex_CliConfig_ForwardingGroupNameToTcMapIn_.create(map, *this);
    else if (!(reactor->notifier() == map))
        reactor->notifierIs(map);
}

void PmapStatusSm::vex_CliConfig_ForwardingGroupNameToTcMapInDel() {
    vex_CliConfig_ForwardingGroupNameToTcMapIn_.clear();
}

const String& PmapStatusSm::pmapName() const noexcept {
    return pmapStatus_ ? pmapStatus_->pmapName() : String::none();
}

bool PmapStatusSm::isOwn(const String& classifierName) const noexcept {
    return classifierName == ipv4ClassifierName_ || classifierName == ipv6ClassifierName_;
}

void PmapStatusSm::handleInitialized() {
    traceOf(this, kHandleInitialized, ", pmapName = ", pmapName());
    const PmapClassifiers& classifiers = classifiersFromPmapName(pmapName());
    ipv4ClassifierName_ = classifiers.ipv4ClassifierName;
    ipv6ClassifierName_ = classifiers.ipv6ClassifierName;
    if (!ipv4ClassifierName_.empty())
        addClassifier(classifierStateDir_, ipv4ClassifierName_, Classifier::Type::IPV4);
    if (!ipv6ClassifierName_.empty())
        addClassifier(classifierStateDir_, ipv6ClassifierName_, Classifier::Type::IPV6);
    handlePmapStatusVersionUpdate();
}

String PmapStatusSm::targetGroupOf(const Qos::PolicyMapClass& policyMapClass) const {
    const std::uint32_t* tc = policyMapClass.action.find(Qos::PolicyMapClass::kSetTrafficClass);
    if (tc == nullptr) return {};
    const Qos::Input::Config* cliConfig = cliConfig_.get()->notifier().get();
    Vex::assertThat(cliConfig != nullptr, "cliConfig", kPmapSource, __LINE__,
                    kUpdateClassifierTermActions.signature);
    return targetGroupFromTc(*tc, cliConfig->forwardingGroupNameToTcMap());
}

ClassifierMetaData::Ptr PmapStatusSm::updateClassifierTermActions() {
    auto metaData = ClassifierMetaData::Ptr::adopt(new ClassifierMetaData);
    metaData->classifierInfoIs(ipv4ClassifierName_);
    metaData->classifierInfoIs(ipv6ClassifierName_);
    writeTermActions([&](const ClassifierKey& key, const String& targetGroup) {
        metaData->classifierInfoIs(key.classifierName)
            .termActionInfoIs({key.termId, key.classifierName, targetGroup});
    });
    return metaData;
}

// Makes each class a term with its action, and hands the class's key and target group to `record`.
template <class Record>
void PmapStatusSm::writeTermActions(Record record) {
    traceOf(this, kUpdateClassifierTermActions, ", pmapName = ", pmapName());
    if (!pmapStatus_) return;
    const StatePlace place(classifierStateDir_);
    for (const auto& member : pmapStatus_->classes()) {
        const ClassifierKey& key = classifierKeyFromConfigObjName(member.key);
        if (!key.isTerm()) continue;
        const String targetGroup = targetGroupOf(member.value);
        // A term that is there needs no more than its action, where no lines are due.
        if (traceEnabled() ||
            !storedTermActionIs(place, key.classifierName, key.termId, targetGroup))
            writeTermAction(place, member.key, key, targetGroup);
        record(key, targetGroup);
    }
}

void PmapStatusSm::writeTermAction(const StatePlace& place, const String& cmapName,
                                   const ClassifierKey& key, const String& targetGroup) const {
    const auto type =
        key.classifierName == ipv6ClassifierName_ ? Classifier::Type::IPV6 : Classifier::Type::IPV4;
    addClassifierTerm(place, key.classifierName, type, key.termId);
    traceOf(this, kUpdateClassifierTermActions, ", cmapName = ", cmapName,
            ", targetGroup = ", targetGroup);
    if (targetGroup.empty())
        deleteClassifierTermAction(place, key.classifierName, key.termId);
    else
        addClassifierTermAction(place, key.classifierName, type, key.termId, targetGroup);
}

void PmapStatusSm::handlePmapStatusVersionUpdate() {
    traceOf(this, kHandlePmapStatusVersionUpdate, ", pmapName = ", pmapName(),
            ", pmapStatusVersion = ", pmapStatus_ ? pmapStatus_->version() : 0);
    if (!traceEnabled() && !writeAndFindStale()) return;
    const ClassifierMetaData::Ptr metaData = updateClassifierTermActions();
    traceOf(this, kHandlePmapStatusVersionUpdate,
            ", removing the stale classifier term action paths");
    removeStaleTermActions(*metaData);
}

// No record is needed to see that nothing is stale: every class that has a target group has a term
// with it, so there is no other term with an action where both are equally many.
bool PmapStatusSm::writeAndFindStale() {
    std::size_t ipv4Actions = 0;
    std::size_t ipv6Actions = 0;
    writeTermActions([&](const ClassifierKey& key, const String& targetGroup) {
        if (targetGroup.empty()) return;
        if (key.classifierName == ipv4ClassifierName_)
            ++ipv4Actions;
        else if (key.classifierName == ipv6ClassifierName_)
            ++ipv6Actions;
    });
    return storedActions(ipv4ClassifierName_) != ipv4Actions ||
           (!(ipv6ClassifierName_ == ipv4ClassifierName_) &&
            storedActions(ipv6ClassifierName_) != ipv6Actions);
}

// The terms whose action would change if it were taken away.
std::size_t PmapStatusSm::storedActions(const String& classifierName) const {
    const State::Classifier* classifier = classifierStateDir_->classifier(classifierName);
    if (classifier == nullptr || classifier->terms() == nullptr) return 0;
    std::size_t count = 0;
    for (const auto& member : classifier->terms()->term())
        if (!member.value.actions || !member.value.actions->targetGroup.empty()) ++count;
    return count;
}

// The classifiers of others are passed over with a line each; where no lines are due, our own are
// looked up instead of walking past all the others.
void PmapStatusSm::removeStaleTermActions(const ClassifierMetaData& metaData) {
    const auto removeIn = [&](const String& name) {
        const State::Classifier* classifier = classifierStateDir_->classifier(name);
        if (classifier != nullptr)
            removeStaleTermActions(*classifier, *metaData.classifierInfo(name));
    };
    if (!traceEnabled()) {
        removeIn(ipv4ClassifierName_);
        if (!(ipv6ClassifierName_ == ipv4ClassifierName_)) removeIn(ipv6ClassifierName_);
        return;
    }
    for (const auto& member : classifierStateDir_->classifier()) {
        if (isOwn(member.key))
            removeIn(member.key);
        else
            traceOf(this, kHandlePmapStatusVersionUpdate, ", classifier: ", member.key,
                    " does not belong to the pmap, skipping");
    }
}

void PmapStatusSm::removeStaleTermActions(const State::Classifier& classifier,
                                          const ClassifierInfo& info) {
    if (classifier.terms() == nullptr) return;
    const StatePlace place(classifierStateDir_);
    for (const auto& member : classifier.terms()->term()) {
        const TermActionInfo* recorded = info.termActionInfo(member.key);
        if (recorded == nullptr || recorded->targetGroup.empty())
            deleteClassifierTermAction(place, classifier.name(), member.key);
    }
}

void PmapStatusSm::handleForwardingGroupNameToTcMap() {
    traceOf(this, kHandleForwardingGroupNameToTcMap);
    // Only a version tells which actions are stale: nobody reads a record of these.
    writeTermActions([](const ClassifierKey&, const String&) {});
}

void PmapStatusSm::doPrepareToDie() {
    traceOf(this, kDoPrepareToDie, ", pmapName = ", pmapName());
    const auto& configured = classifierConfigDir_->classifier();
    const auto giveBackNamed = [&](const String& name) {
        if (const auto* classifier = configured.find(name)) giveBack(**classifier);
    };
    if (!traceEnabled()) {
        giveBackNamed(ipv4ClassifierName_);
        if (!(ipv6ClassifierName_ == ipv4ClassifierName_)) giveBackNamed(ipv6ClassifierName_);
        return;
    }
    for (const auto& member : configured) {
        if (isOwn(member.key))
            giveBack(*member.value);
        else
            traceOf(this, kDoPrepareToDie, ", the classifier: ", member.key,
                    " does not belong to the pmap: ", pmapName(), ", skipping");
    }
}

void PmapStatusSm::giveBack(const Config::Classifier& configured) {
    const String& name = configured.name();
    const auto type = configured.config().type.value_or(Classifier::Type::IPV4);
    const StatePlace place(classifierStateDir_);
    addClassifier(place, name, type);
    if (!configured.terms()) return;
    for (const auto& member : configured.terms()->term()) {
        addClassifierTerm(place, name, type, member.key);
        const auto& actions = member.value.actions;
        if (actions && !actions->targetGroup.empty())
            addClassifierTermAction(place, name, type, member.key, actions->targetGroup);
    }
}

}  // namespace QosOc

template class Vex::Reactor<QosOc::PmapStatusSm>;
