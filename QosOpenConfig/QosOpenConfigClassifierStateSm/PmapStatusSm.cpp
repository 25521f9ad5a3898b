#include "QosOpenConfig/QosOpenConfigClassifierStateSm/PmapStatusSm.h"

#include <utility>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/OwnClassifiers.h"
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
    // The first computation reads the map through the configuration. The map is watched after it.
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

OwnNames PmapStatusSm::ownNames() const noexcept {
    return {ipv4ClassifierName_, ipv6ClassifierName_};
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
    return targetGroupFromTc(*tc, cliConfig->forwardingGroupNameToTcMap().get());
}

ClassifierMetaData::Ptr PmapStatusSm::updateClassifierTermActions() {
    auto metaData = ClassifierMetaData::Ptr::adopt(new ClassifierMetaData);
    metaData->classifierInfoIs(ipv4ClassifierName_);
    metaData->classifierInfoIs(ipv6ClassifierName_);
    writeTermActions([&](const ClassifierKey& key, String&& targetGroup) {
        metaData->classifierInfoIs(key.classifierName)
            .termActionInfoIs({key.termId, key.classifierName, std::move(targetGroup)});
    });
    return metaData;
}

template <class Record>
void PmapStatusSm::writeTermActions(Record record) {
    traceOf(this, kUpdateClassifierTermActions, ", pmapName = ", pmapName());
    if (!pmapStatus_) return;
    const StatePlace place(classifierStateDir_);
    for (const auto& member : pmapStatus_->classes()) {
        const ClassifierKey& key = classifierKeyFromConfigObjName(member.key);
        if (key.isTerm()) record(key, writeTermAction(place, key, member.key, member.value));
    }
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
    const ClassifierMetaData::Ptr metaData = updateClassifierTermActions();
    traceOf(this, kHandlePmapStatusVersionUpdate,
            ", removing the stale classifier term action paths");
    removeStaleTermActions(*metaData);
}

void PmapStatusSm::removeStaleTermActions(const ClassifierMetaData& metaData) {
    const auto removeIn = [&](const Orin::Ptr<State::Classifier>& classifier) {
        removeStaleTermActions(*classifier, *metaData.classifierInfo(classifier->name()));
    };
    visitOwn(classifierStateDir_->classifier(), ownNames(), removeIn, [this](const String& name) {
        traceOf(this, kHandlePmapStatusVersionUpdate, ", classifier: ", name,
                " does not belong to the pmap, skipping");
    });
}

void PmapStatusSm::removeStaleTermActions(const State::Classifier& classifier,
                                          const ClassifierInfo& info) {
    // A subscriber may remove both.
    const auto held = Orin::Ptr<const State::Classifier>::sharing(&classifier);
    const auto terms = Orin::Ptr<State::Terms>::sharing(classifier.terms());
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
    // Only a change of the version says which actions are stale, so no record is needed.
    writeTermActions([](const ClassifierKey&, const String&) {});
}

void PmapStatusSm::doPrepareToDie() {
    traceOf(this, kDoPrepareToDie, ", pmapName = ", pmapName());
    const auto giveBack = [this](const auto& configured) { this->giveBack(*configured); };
    visitOwn(classifierConfigDir_->classifier(), ownNames(), giveBack, [this](const String& name) {
        traceOf(this, kDoPrepareToDie, ", the classifier: ", name,
                " does not belong to the pmap: ", pmapName(), ", skipping");
    });
}

void PmapStatusSm::giveBack(const Config::Classifier& configured) {
    const auto held = Orin::Ptr<const Config::Classifier>::sharing(&configured);
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
