#include "bench/QosOpenConfig/Device.h"

#include <string>
#include <string_view>

namespace QosBench {
namespace {

using Orin::String;

constexpr std::uint32_t kSpareTc = 1000;
constexpr std::string_view kSpareGroup = "spare";

String groupName(std::size_t tc) {
    return String("group-" + std::to_string(tc));
}
String termName(std::size_t classifier, std::size_t term) {
    return String("openconfig:classifier-" + std::to_string(classifier) + ":term-" +
                  std::to_string(term));
}
Qos::PolicyMapClass classWithTc(std::uint32_t tc) {
    Qos::PolicyMapClass policyMapClass;
    policyMapClass.action.is(Qos::PolicyMapClass::kSetTrafficClass, tc);
    return policyMapClass;
}

}  // namespace

Device::Device(std::size_t classifiers)
    : pmapType_(Qos::PolicyMapTypeStatus::create(Qos::MapType::mapQos)),
      cmapType_(Qos::ClassMapTypeStatus::create(Qos::MapType::mapQos)),
      groups_(Qos::ForwardingGroupNameToTcMap::create()),
      acls_(Acl::Input::AclTypeConfig::create(Acl::AclType::ipv4)) {
    for (std::uint32_t tc = 0; tc != 2 * kClasses; ++tc)
        groups_->tcIs(groupName(tc), tc);
    groups_->tcIs(kSpareGroup, kSpareTc);
    cliConfig_->forwardingGroupNameToTcMapIs(groups_);
    status_->pmapTypeStatusIs(pmapType_);
    status_->cmapTypeStatusIs(cmapType_);
    aclConfig_->aclTypeConfigIs(acls_);
    for (std::size_t index = 0; index != classifiers; ++index)
        addClassifier(index);
    root_ = QosOc::ClassifierStateSm::ClassifierStateSmIs(status_, aclConfig_, cliConfig_,
                                                          configDir_, state_);
}

void Device::addClassifier(std::size_t index) {
    const auto name = String("classifier-" + std::to_string(index));
    const auto pmap = Qos::PolicyMapStatus::create(String("openconfig:" + std::string(name) + ":"));
    for (std::uint32_t term = 0; term != kClasses; ++term) {
        termNames_.push_back(termName(index, term));
        pmap->classIs(termNames_.back(), classWithTc(term));
        addTerm(termNames_.back());
    }
    pmap->versionIs(1);
    pmapType_->pmapStatusIs(pmap);
    pmaps_.push_back(pmap);
    const auto configured = QosOc::Config::Classifier::create(name);
    configured->configIs({name, QosOc::Classifier::Type::IPV4});
    configured->termsIs(QosOc::Config::Terms::create());
    configDir_->classifierIs(configured);
}

void Device::addTerm(const String& name) {
    cmapType_->cmapStatusIs(classMap(name));
    const auto acl = Acl::AclConfig::create(name, Acl::AclType::ipv4);
    const auto rules = Acl::AclSubConfig::create();
    ruleIs(*rules, 1);
    acl->aclSubConfigIs(rules);
    acls_->aclConfigIs(name, acl);
}

Orin::Ptr<Qos::ClassMapStatus> Device::classMap(const String& name) const {
    auto cmap = Qos::ClassMapStatus::create(name);
    cmap->matchIs(Qos::ClassMapMatchOption::matchIpAccessGroup, name);
    return cmap;
}

void Device::ruleIs(Acl::AclSubConfig& rules, std::uint32_t sequence) {
    const Ovk::UniqueId id{sequence};
    rules.ipRuleByIdIs(id, {{static_cast<std::uint8_t>(sequence % 64), true}});
    rules.ruleIdBySequenceIs(sequence, id);
}

void Device::changePolicyMap(std::size_t changedClasses) {
    Qos::PolicyMapStatus& pmap = *pmaps_[size() / 2];
    const std::uint32_t shift = pmap.version() % 2 * kClasses;
    for (std::uint32_t term = 0; term != changedClasses; ++term)
        pmap.classIs(termNames_[size() / 2 * kClasses + term], classWithTc(term + shift));
    pmap.versionIs(pmap.version() + 1);
}

void Device::changeSpareForwardingGroup() {
    const std::uint32_t tc = *groups_->tc().find(kSpareGroup);
    groups_->tcIs(kSpareGroup, tc == kSpareTc ? kSpareTc + 1 : kSpareTc);
}

void Device::changeUsedForwardingGroup() {
    const std::uint32_t used = kClasses - 1;
    const String group = groupName(used);
    groups_->tcIs(group, *groups_->tc().find(group) == used ? kSpareTc + 2 : used);
}

void Device::publishClassMap() {
    const String& name = termNames_[termNames_.size() / 2];
    cmapType_->publishChange(Qos::ClassMapTypeStatus::kCmapStatus.id, &name);
}

void Device::removeClassMap() {
    cmapType_->cmapStatusDel(termNames_[termNames_.size() / 2]);
}

void Device::addClassMap() {
    cmapType_->cmapStatusIs(classMap(termNames_[termNames_.size() / 2]));
}

void Device::giveRules(std::size_t rules) {
    const auto replaced = Acl::AclSubConfig::create();
    lastSequence_ = 0;
    while (lastSequence_ != rules)
        ruleIs(*replaced, ++lastSequence_);
    rules_ = replaced;
    (*acls_->aclConfig().find(termNames_[termNames_.size() / 2]))->aclSubConfigIs(replaced);
}

void Device::addRule() {
    ruleIs(*rules_, ++lastSequence_);
}

void Device::removeRule() {
    rules_->ruleIdBySequenceDel(lastSequence_);
    rules_->ipRuleByIdDel(Ovk::UniqueId{lastSequence_});
    --lastSequence_;
}

}  // namespace QosBench
