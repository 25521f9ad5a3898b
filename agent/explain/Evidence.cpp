#include "agent/explain/Evidence.h"

#include <algorithm>

#include "platform/Acl/Input/Config.h"
#include "platform/Qos/Input/Config.h"
#include "platform/Qos/Status.h"
#include "platform/QosOc/Naming.h"

namespace QosAgent {
namespace {

using Acl::AclType;
using Orin::String;
using QosOc::Classifier::Type;

template <class Root>
const Root& rootAt(const Database& database, std::string_view path) {
    return static_cast<const Root&>(*database.subtreeAt(path)->root);
}

/// The entity under the key; null if there is none, or a null entry.
template <class Members, class Key>
auto* memberOf(const Members& members, const Key& key) {
    const auto* held = members.find(key);
    return held == nullptr ? nullptr : held->get();
}

std::string_view whyIgnored(const Acl::IpRuleConfig&) {
    return "disabled";
}
std::string_view whyIgnored(const Acl::Ip6RuleConfig&) {
    return "mask";
}

template <class Rules>
RuleEvidence ruleOf(const Rules& rules, std::uint32_t sequence, Ovk::UniqueId id) {
    const auto* rule = rules.find(id);
    if (rule == nullptr) return {sequence, id, {}, "missing"};
    if (!matchesDscp(*rule)) return {sequence, id, {}, whyIgnored(*rule)};
    return {sequence, id, dscpOf(*rule), {}};
}

std::vector<RuleEvidence> rulesOf(const Acl::AclSubConfig& config, AclType type) {
    std::vector<RuleEvidence> rules;
    rules.reserve(config.ruleIdBySequence().size());
    for (const auto& member : config.ruleIdBySequence())
        rules.push_back(type == AclType::ipv6
                            ? ruleOf(config.ip6RuleById(), member.key, member.value)
                            : ruleOf(config.ipRuleById(), member.key, member.value));
    return rules;
}

template <class Terms>
void addIds(Names& ids, const Terms* terms) {
    if (terms == nullptr) return;
    for (const auto& member : terms->term())
        ids.insert(member.key);
}

}  // namespace

bool AccessListEvidence::counts() const {
    return std::any_of(rules.begin(), rules.end(),
                       [](const RuleEvidence& rule) { return rule.dscp.has_value(); });
}

bool ClassifierEvidence::isInPolicyMap() const {
    return made != nullptr && !(made->ipv4PolicyMaps.empty() && made->ipv6PolicyMaps.empty());
}

Type ClassifierEvidence::configuredFamily() const {
    return configured == nullptr ? Type::IPV4 : configured->config().type.value_or(Type::IPV4);
}

DscpValues dscpValues(const QosOc::Config::Term* term, Type family) {
    DscpValues values;
    if (term == nullptr || !term->conditions) return values;
    const auto& conditions = family == Type::IPV6 ? term->conditions->ipv6 : term->conditions->ipv4;
    if (conditions.dscp) values.push_back(*conditions.dscp);
    for (const std::uint8_t value : conditions.dscpSet)
        if (value != conditions.dscp) values.push_back(value);
    return values;
}

const String& targetGroup(const QosOc::Config::Term* term) {
    return term == nullptr || !term->actions ? String::none() : term->actions->targetGroup;
}

EvidenceReader::EvidenceReader(const Database& database, const NameIndex& index)
    : database_(database), index_(index) {}

const QosOc::Config::ClassifiersDir& EvidenceReader::configured() const {
    return rootAt<QosOc::Config::ClassifiersDir>(database_, "qos/openconfig/config/classifiers");
}

const QosOc::State::ClassifiersDir& EvidenceReader::state() const {
    return rootAt<QosOc::State::ClassifiersDir>(database_, "qos/openconfig/state/classifiers");
}

ClassifierEvidence EvidenceReader::classifier(const String& name) const {
    ClassifierEvidence evidence{name};
    evidence.state = state().classifier(name);
    evidence.configured = memberOf(configured().classifier(), name);
    evidence.hasOwnClassMap =
        !QosOc::classifierNameFromClassName(name).empty() && classMap(name) != nullptr;
    evidence.made = index_.find(name);
    return evidence;
}

TermEvidence EvidenceReader::term(const ClassifierEvidence& classifier, const String& id) const {
    TermEvidence term{&classifier, id, String(QosOc::configObjName(classifier.name, id))};
    if (classifier.state != nullptr && classifier.state->terms() != nullptr)
        term.state = classifier.state->terms()->term(id);
    if (classifier.configured != nullptr && classifier.configured->terms())
        term.configured = classifier.configured->terms()->term().find(id);
    term.classMap = classMap(term.objName);
    addAccessList(term, AclType::ipv4);
    addAccessList(term, AclType::ipv6);
    if (classifier.made == nullptr) return term;
    const auto made = classifier.made->terms.find(id);
    if (made == classifier.made->terms.end()) return term;
    for (const String& pmapName : made->second.policyMaps)
        addPolicyMap(term, pmapName);
    return term;
}

Names EvidenceReader::termIds(const ClassifierEvidence& classifier) {
    Names ids;
    if (classifier.state != nullptr) addIds(ids, classifier.state->terms());
    if (classifier.configured != nullptr) addIds(ids, classifier.configured->terms().get());
    if (classifier.made != nullptr)
        for (const auto& [id, made] : classifier.made->terms)
            ids.insert(id);
    return ids;
}

const Qos::ClassMapStatus* EvidenceReader::classMap(const String& name) const {
    const auto* classMaps = memberOf(rootAt<Qos::Status>(database_, "qos/status").cmapTypeStatus(),
                                     Qos::MapType::mapQos);
    return classMaps == nullptr ? nullptr : memberOf(classMaps->cmapStatus(), name);
}

void EvidenceReader::addAccessList(TermEvidence& term, AclType type) const {
    const auto& config = rootAt<Acl::Input::Config>(database_, "acl/config/cli");
    const auto* lists = memberOf(config.aclTypeConfig(), type);
    if (lists == nullptr) return;
    const auto* held = lists->aclConfig().find(term.objName);
    if (held == nullptr) return;
    const bool isConfigured = *held && (*held)->aclSubConfig();
    AccessListEvidence list{type, isConfigured, {}};
    if (isConfigured) list.rules = rulesOf(*(*held)->aclSubConfig(), type);
    term.accessLists.push_back(std::move(list));
}

void EvidenceReader::addPolicyMap(TermEvidence& term, const String& pmapName) const {
    const auto& status = rootAt<Qos::Status>(database_, "qos/status");
    const auto& map =
        rootAt<Qos::Input::Config>(database_, "qos/input/config/cli").forwardingGroupNameToTcMap();
    const auto* policyMaps = memberOf(status.pmapTypeStatus(), Qos::MapType::mapQos);
    PolicyMapEvidence evidence{memberOf(policyMaps->pmapStatus(), pmapName), {}, {}};
    const Qos::PolicyMapClass* made = evidence.policyMap->classes().find(term.objName);
    const auto* trafficClass = made->action.find(Qos::PolicyMapClass::kSetTrafficClass);
    if (trafficClass != nullptr) {
        evidence.trafficClass = *trafficClass;
        evidence.targetGroup = QosOc::targetGroupFromTc(*trafficClass, map);
    }
    term.policyMaps.push_back(std::move(evidence));
}

}  // namespace QosAgent
