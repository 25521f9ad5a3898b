#include "bench/QosOpenConfig/Device.h"

#include <algorithm>
#include <string_view>

#include "platform/QosOc/Naming.h"

namespace QosBench {
namespace {

using Orin::String;

constexpr std::uint32_t kSpareTc = 1000;
constexpr std::string_view kConfiguredName = "configured";

String numbered(std::string_view what, std::size_t number) {
    return String::shared(std::string(what) + std::to_string(number));
}
String groupName(std::size_t tc) {
    return numbered("group-", tc);
}
String termName(std::string_view classifier, std::size_t term) {
    return numbered("openconfig:" + std::string(classifier) + ":term-", term);
}
Qos::PolicyMapClass classWithTc(std::uint32_t tc) {
    Qos::PolicyMapClass policyMapClass;
    policyMapClass.action.is(Qos::PolicyMapClass::kSetTrafficClass, tc);
    return policyMapClass;
}
QosOc::Config::Term configuredTerm(const String& id, const String& group) {
    QosOc::Config::Term term(id);
    term.actions = QosOc::Config::TermActions{group};
    return term;
}
/// A collection of an entity, to be changed without a publication: what is counted of some events
/// begins with the publication.
template <class Map>
Map& beneath(const Map& map) {
    return const_cast<Map&>(map);
}
void ruleIs(Acl::AclSubConfig& rules, std::uint32_t sequence) {
    const Ovk::UniqueId id{sequence};
    rules.ipRuleByIdIs(id, {{static_cast<std::uint8_t>(sequence % 64), true}});
    rules.ruleIdBySequenceIs(sequence, id);
}
Orin::Ptr<Acl::AclSubConfig> rulesFrom(std::uint32_t first, std::size_t count) {
    auto rules = Acl::AclSubConfig::create();
    for (std::uint32_t sequence = first; sequence != first + count; ++sequence)
        ruleIs(*rules, sequence);
    return rules;
}

std::string lineOf(const String& classifier, const QosOc::State::Term& term) {
    std::string line(classifier);
    line.append("/").append(term.id.view()).append(" dscp");
    if (term.conditions) {
        const auto& ipv4 = term.conditions->ipv4;
        if (ipv4.dscp) line.append(" ").append(std::to_string(*ipv4.dscp));
        for (const std::uint8_t dscp : ipv4.dscpSet)
            line.append(" ").append(std::to_string(dscp));
    }
    line.append(" group ").append(term.actions ? term.actions->targetGroup.view() : "");
    return line + "\n";
}

}  // namespace

Device::Device(std::size_t classifiers, std::size_t termsEach)
    : pmapType_(Qos::PolicyMapTypeStatus::create(Qos::MapType::mapQos)),
      cmapType_(Qos::ClassMapTypeStatus::create(Qos::MapType::mapQos)),
      groups_(Qos::ForwardingGroupNameToTcMap::create()),
      acls_(Acl::Input::AclTypeConfig::create(Acl::AclType::ipv4)),
      usedGroup_(groupName(0)),
      spareGroup_("spare") {
    for (std::uint32_t tc = 0; tc != 2 * kClasses; ++tc)
        groups_->tcIs(groupName(tc), tc);
    groups_->tcIs(spareGroup_, kSpareTc);
    cliConfig_->forwardingGroupNameToTcMapIs(groups_);
    status_->pmapTypeStatusIs(pmapType_);
    status_->cmapTypeStatusIs(cmapType_);
    aclConfig_->aclTypeConfigIs(acls_);
    for (std::size_t index = 0; index != classifiers; ++index)
        if (index == classifiers / 2)
            workOn(addClassifier(index, kClasses));
        else
            addClassifier(index, termsEach);
    addConfiguredClassifier();
}

Orin::Ptr<Qos::PolicyMapStatus> Device::addClassifier(std::size_t index, std::size_t terms) {
    const String name = numbered("classifier-", index);
    auto pmap = Qos::PolicyMapStatus::create(String("openconfig:" + std::string(name) + ":"));
    for (std::uint32_t term = 0; term != terms; ++term) {
        const String objName = termName(name, term);
        pmap->classIs(objName, classWithTc(term));
        addTerm(objName);
    }
    pmap->versionIs(1);
    pmapType_->pmapStatusIs(pmap);
    const auto configured = QosOc::Config::Classifier::create(name);
    configured->configIs({name, QosOc::Classifier::Type::IPV4});
    configured->termsIs(QosOc::Config::Terms::create());
    configDir_->classifierIs(configured);
    return pmap;
}

void Device::workOn(const Orin::Ptr<Qos::PolicyMapStatus>& pmap) {
    pmap_ = pmap;
    for (const auto& member : pmap->classes())
        termNames_.push_back(member.key);
    classifierName_ = QosOc::classifierKeyFromConfigObjName(termNames_.front()).classifierName;
    cmap_ = *cmapType_->cmapStatus().find(termNames_.front());
    acl_ = *acls_->aclConfig().find(termNames_.front());
    rules_ = acl_->aclSubConfig();
}

void Device::addTerm(const String& name) {
    cmapType_->cmapStatusIs(classMap(name));
    const auto acl = Acl::AclConfig::create(name, Acl::AclType::ipv4);
    acl->aclSubConfigIs(rulesFrom(1, 1));
    acls_->aclConfigIs(name, acl);
}

void Device::addConfiguredClassifier() {
    configuredTerms_ = QosOc::Config::Terms::create();
    for (std::size_t term = 0; term != kClasses; ++term)
        configuredTerms_->termIs(configuredTerm(numbered("term-", term), groupName(term)));
    for (const std::size_t choice : {0U, 1U})
        configuredTerm_[choice] = configuredTerm(numbered("term-", 0), groupName(choice));
    const String name(kConfiguredName);
    const auto configured = QosOc::Config::Classifier::create(name);
    configured->configIs({name, QosOc::Classifier::Type::IPV4});
    configured->termsIs(configuredTerms_);
    configDir_->classifierIs(configured);
}

Orin::Ptr<Qos::ClassMapStatus> Device::classMap(const String& name) const {
    auto cmap = Qos::ClassMapStatus::create(name);
    cmap->matchIs(Qos::ClassMapMatchOption::matchIpAccessGroup, name);
    return cmap;
}

std::string Device::stateText() const {
    std::vector<std::string> lines;
    for (const String& name : {classifierName_, String(kConfiguredName)}) {
        const QosOc::State::Classifier* classifier = state_->classifier(name);
        if (classifier == nullptr || classifier->terms() == nullptr) continue;
        for (const auto& member : classifier->terms()->term())
            lines.push_back(lineOf(name, member.value));
    }
    std::sort(lines.begin(), lines.end());
    std::string text;
    for (const std::string& line : lines)
        text += line;
    return text;
}

void Device::writeState() {
    for (const auto& member : acls_->aclConfig()) {
        const QosOc::ClassifierKey& key = QosOc::classifierKeyFromConfigObjName(member.key);
        Orin::Vector<std::uint8_t> dscps{1};
        QosOc::addClassifierTermCondition(state_, key.classifierName, QosOc::Classifier::Type::IPV4,
                                          key.termId, dscps);
        QosOc::addClassifierTermAction(state_, key.classifierName, QosOc::Classifier::Type::IPV4,
                                       key.termId, usedGroup_);
    }
    for (const auto& member : pmapType_->pmapStatus())
        QosOc::classifiersFromPmapName(member.key);
}

void Device::start() {
    root_ = QosOc::ClassifierStateSm::ClassifierStateSmIs(status_, aclConfig_, cliConfig_,
                                                          configDir_, state_);
}

void Device::watchState() {
    stateWatcher_.dispatch = [](Orin::Publisher&, Orin::Subscriber&, Orin::AttributeId,
                                const void*) noexcept {};
    state_->classifier(classifierName_)->terms()->publisher()->subscriberAdd(stateWatcher_);
}

void Device::changeClasses(std::size_t classes) {
    const std::uint32_t shift = pmap_->version() % 2 * kClasses;
    for (std::uint32_t term = 0; term != classes; ++term)
        pmap_->classIs(termNames_[term], classWithTc(term + shift));
}

void Device::raiseVersion() {
    pmap_->versionIs(pmap_->version() + 1);
}

void Device::removePolicyMap() {
    pmapType_->pmapStatusDel(pmap_->pmapName());
}

void Device::addPolicyMap() {
    pmapType_->pmapStatusIs(pmap_);
}

void Device::changeSpareForwardingGroup() {
    isAlternate_ = !isAlternate_;
    groups_->tcIs(spareGroup_, isAlternate_ ? kSpareTc + 1 : kSpareTc);
}

void Device::changeUsedForwardingGroup() {
    isAlternate_ = !isAlternate_;
    groups_->tcIs(usedGroup_, isAlternate_ ? kSpareTc + 2 : 0);
}

void Device::publishClassMap() {
    cmapType_->publishChange(Qos::ClassMapTypeStatus::kCmapStatus.id, &termNames_.front());
}

void Device::removeClassMap() {
    beneath(cmapType_->cmapStatus()).erase(termNames_.front());
    publishClassMap();
}

void Device::addClassMap() {
    beneath(cmapType_->cmapStatus()).enter(termNames_.front(), cmap_);
    publishClassMap();
}

void Device::changeMatch() {
    isAlternate_ = !isAlternate_;
    cmap_->matchIs(Qos::ClassMapMatchOption::matchIpAccessGroup, termNames_[isAlternate_ ? 1 : 0]);
}

void Device::giveRules(std::size_t rules) {
    lastSequence_ = static_cast<std::uint32_t>(rules);
    rules_ = rulesFrom(1, rules);
    acl_->aclSubConfigIs(rules_);
}

void Device::addRule() {
    ruleIs(*rules_, ++lastSequence_);
}

void Device::removeRule() {
    rules_->ruleIdBySequenceDel(lastSequence_);
    rules_->ipRuleByIdDel(Ovk::UniqueId{lastSequence_});
    --lastSequence_;
}

void Device::changeRule() {
    isAlternate_ = !isAlternate_;
    *beneath(rules_->ruleIdBySequence()).find(lastSequence_) = {isAlternate_ ? 1 : lastSequence_};
    rules_->publishChange(Acl::AclSubConfig::kRuleIdBySequence.id, &lastSequence_);
}

void Device::giveTwoLists() {
    rules_ = rulesFrom(1, kClasses);
    otherRules_ = rulesFrom(1 + kClasses, kClasses);
}

void Device::replaceRules() {
    std::swap(rules_, otherRules_);
    acl_->aclSubConfigIs(rules_);
}

void Device::changeConfiguredAction() {
    isAlternate_ = !isAlternate_;
    const QosOc::Config::Term& changed = configuredTerm_[isAlternate_ ? 1 : 0];
    beneath(configuredTerms_->term()).find(changed.id)->actions = changed.actions;
    configuredTerms_->publishChange(QosOc::Config::Terms::kTerm.id, &changed.id);
}

}  // namespace QosBench
