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

/// How often any policy map's actions were written so far.
std::uint32_t runs = 0;

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
    if (attributeId == Qos::ForwardingGroupNameToTcMap::kTc.id)
        owner_.handle([this] { owner_.handleForwardingGroupNameToTcMap(); });
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

template <class Visit>
void PmapStatusSm::eachTerm(Visit visit) const {
    if (!pmapStatus_) return;
    for (const auto& member : pmapStatus_->classes()) {
        const ClassifierKey& key = classifierKeyFromConfigObjName(member.key);
        if (key.isTerm()) visit(key, member.key, member.value);
    }
}

template <class Fill>
ClassifierMetaData::Ptr PmapStatusSm::recordFilledBy(Fill fill) const {
    auto metaData = ClassifierMetaData::Ptr::adopt(new ClassifierMetaData);
    metaData->classifierInfoIs(ipv4ClassifierName_);
    metaData->classifierInfoIs(ipv6ClassifierName_);
    fill([&](const ClassifierKey& key, const String& targetGroup) {
        metaData->classifierInfoIs(key.classifierName)
            .termActionInfoIs({key.termId, key.classifierName, targetGroup});
    });
    return metaData;
}

ClassifierMetaData::Ptr PmapStatusSm::updateClassifierTermActions() {
    return recordFilledBy([&](const auto& record) { writeTermActions(record); });
}

ClassifierMetaData::Ptr PmapStatusSm::termActions() const {
    return recordFilledBy([&](const auto& record) {
        eachTerm([&](const ClassifierKey& key, const String&, const Qos::PolicyMapClass& each) {
            record(key, targetGroupOf(each));
        });
    });
}

// Makes each class a term with its action, and hands the class's key and target group to `record`.
template <class Record>
void PmapStatusSm::writeTermActions(Record record) {
    traceOf(this, kUpdateClassifierTermActions, ", pmapName = ", pmapName());
    ++runs;
    const StatePlace place(classifierStateDir_);
    eachTerm([&](const ClassifierKey& key, const String& cmapName,
                 const Qos::PolicyMapClass& policyMapClass) {
        // A term that is there needs no more than its action, where no lines are due.
        if (traceEnabled() || place.term(key.classifierName, key.termId) == nullptr) {
            record(key, writeTermAction(place, key, cmapName, policyMapClass));
            return;
        }
        const String targetGroup = targetGroupOf(policyMapClass);
        storedTermActionIs(place, key.classifierName, key.termId, targetGroup);
        record(key, targetGroup);
    });
}

String PmapStatusSm::writeTermAction(const StatePlace& place, const ClassifierKey& key,
                                     const String& cmapName,
                                     const Qos::PolicyMapClass& policyMapClass) const {
    const auto type =
        key.classifierName == ipv6ClassifierName_ ? Classifier::Type::IPV6 : Classifier::Type::IPV4;
    addClassifierTerm(place, key.classifierName, type, key.termId);
    const String targetGroup = targetGroupOf(policyMapClass);
    traceOf(this, kUpdateClassifierTermActions, ", cmapName = ", cmapName,
            ", targetGroup = ", targetGroup);
    if (targetGroup.empty())
        deleteClassifierTermAction(place, key.classifierName, key.termId);
    else
        addClassifierTermAction(place, key.classifierName, type, key.termId, targetGroup);
    return targetGroup;
}

void PmapStatusSm::handlePmapStatusVersionUpdate() {
    traceOf(this, kHandlePmapStatusVersionUpdate, ", pmapName = ", pmapName(),
            ", pmapStatusVersion = ", pmapStatus_ ? pmapStatus_->version() : 0);
    if (!traceEnabled()) {
        if (writeAndFindStale()) removeStaleTermActions(*termActions());
        return;
    }
    const ClassifierMetaData::Ptr metaData = updateClassifierTermActions();
    traceOf(this, kHandlePmapStatusVersionUpdate,
            ", removing the stale classifier term action paths");
    removeStaleTermActions(*metaData);
}

// No record is needed to see that nothing is stale: every class that has a target group has a term
// with it, so there is no other term with an action where both are equally many. That is not so
// where somebody who was told took terms away, or had us look at our groups again.
bool PmapStatusSm::writeAndFindStale() {
    const std::uint32_t removalsBefore = stateRemovals();
    const std::uint32_t run = runs + 1;
    std::size_t ipv4Actions = 0;
    std::size_t ipv6Actions = 0;
    writeTermActions([&](const ClassifierKey& key, const String& targetGroup) {
        if (targetGroup.empty()) return;
        if (key.classifierName == ipv4ClassifierName_)
            ++ipv4Actions;
        else if (key.classifierName == ipv6ClassifierName_)
            ++ipv6Actions;
    });
    return stateRemovals() != removalsBefore || runs != run ||
           storedActions(ipv4ClassifierName_) != ipv4Actions ||
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

// The members that are named like our classifiers, in the order of a walk.
template <class Members, class Visit>
void PmapStatusSm::eachOwn(const Members& members, Visit visit) const {
    const bool isIpv6First = members.isBefore(ipv6ClassifierName_, ipv4ClassifierName_);
    const String first = isIpv6First ? ipv6ClassifierName_ : ipv4ClassifierName_;
    const String second = isIpv6First ? ipv4ClassifierName_ : ipv6ClassifierName_;
    if (const auto* member = members.find(first)) visit(*member);
    if (first == second) return;
    if (const auto* member = members.find(second)) visit(*member);
}

// The classifiers of others are passed over with a line each; where no lines are due, our own are
// looked up instead of walking past all the others.
void PmapStatusSm::removeStaleTermActions(const ClassifierMetaData& metaData) {
    const auto& classifiers = classifierStateDir_->classifier();
    const auto removeIn = [&](const Orin::Ptr<State::Classifier>& classifier) {
        removeStaleTermActions(*classifier, *metaData.classifierInfo(classifier->name()));
    };
    if (!traceEnabled()) {
        eachOwn(classifiers, removeIn);
        return;
    }
    for (const auto& member : classifiers) {
        if (isOwn(member.key))
            removeIn(member.value);
        else
            traceOf(this, kHandlePmapStatusVersionUpdate, ", classifier: ", member.key,
                    " does not belong to the pmap, skipping");
    }
}

void PmapStatusSm::removeStaleTermActions(const State::Classifier& classifier,
                                          const ClassifierInfo& info) {
    // They may go with what is told.
    const Orin::Ptr<const State::Classifier> held(&classifier);
    const Orin::Ptr<State::Terms> terms(classifier.terms());
    if (!terms) return;
    const String& name = classifier.name();
    const StatePlace place(classifierStateDir_);
    for (const auto& member : terms->term()) {
        const TermActionInfo* recorded = info.termActionInfo(member.key);
        if (recorded == nullptr || recorded->targetGroup.empty())
            deleteClassifierTermAction(place, name, member.key);
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
    if (!traceEnabled()) {
        eachOwn(configured, [&](const auto& classifier) { giveBack(*classifier); });
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
    const Orin::Ptr<const Config::Classifier> held(&configured);
    const String& name = configured.name();
    const auto type = configured.config().type.value_or(Classifier::Type::IPV4);
    const StatePlace place(classifierStateDir_);
    addClassifier(place, name, type);
    const Orin::Ptr<const Config::Terms> terms = configured.terms();
    if (!terms) return;
    for (const auto& member : terms->term()) {
        addClassifierTerm(place, name, type, member.key);
        const auto& actions = member.value.actions;
        if (actions && !actions->targetGroup.empty())
            addClassifierTermAction(place, name, type, member.key, actions->targetGroup);
    }
}

}  // namespace QosOc

template class Vex::Reactor<QosOc::PmapStatusSm>;
