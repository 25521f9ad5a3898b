#include "agent/openconfig/AccessListWriter.h"

#include <utility>

namespace QosAgent {
namespace {

using Acl::AclConfig;
using Acl::AclSubConfig;
using Acl::AclType;
using Acl::Input::AclTypeConfig;
using Ovk::UniqueId;

/// The traffic class of RFC 8200 has the DSCP in its upper six bits.
constexpr std::uint8_t kDscpMask = 0xFC;

std::uint32_t sequenceOf(std::size_t place) {
    return static_cast<std::uint32_t>(10 * (place + 1));
}

AclType aclTypeOf(const TermOfClassifier& of) {
    return of.classifier->family() == QosOc::Classifier::Type::IPV6 ? AclType::ipv6 : AclType::ipv4;
}

/// What the access list of that type matches for the term; nothing if it has none.
std::vector<std::uint8_t> valuesFor(AclType type, const std::optional<TermOfClassifier>& of) {
    if (!of || aclTypeOf(*of) != type) return {};
    return of->term->dscpValues();
}

/// True if that changed the rule.
bool ruleIs(AclSubConfig& rules, AclType type, std::uint32_t sequence, std::uint8_t dscp) {
    const UniqueId id{sequence};
    if (type == AclType::ipv6) {
        const auto trafficClass = static_cast<std::uint8_t>(dscp << Acl::kDscpShift);
        const Acl::Ip6RuleConfig rule{{trafficClass, kDscpMask}};
        const auto* held = rules.ip6RuleById().find(id);
        const bool isEqual = held != nullptr && *held == rule;
        rules.ip6RuleByIdIs(id, rule);
        return !isEqual;
    }
    const Acl::IpRuleConfig rule{{dscp, true}};
    const auto* held = rules.ipRuleById().find(id);
    const bool isEqual = held != nullptr && *held == rule;
    rules.ipRuleByIdIs(id, rule);
    return !isEqual;
}

void ruleDel(AclSubConfig& rules, AclType type, std::uint32_t sequence) {
    if (type == AclType::ipv6)
        rules.ip6RuleByIdDel(UniqueId{sequence});
    else
        rules.ipRuleByIdDel(UniqueId{sequence});
}

/// Whether the sequence number stands for the rule of the same number.
bool isSequenced(const AclSubConfig& rules, std::uint32_t sequence) {
    const UniqueId* held = rules.ruleIdBySequence().find(sequence);
    return held != nullptr && *held == UniqueId{sequence};
}

/// Lets the readers of the rules know that this one is as it should be.
void tellRule(AclSubConfig& rules, std::uint32_t sequence, bool isChanged) {
    if (!isSequenced(rules, sequence))
        rules.ruleIdBySequenceIs(sequence, UniqueId{sequence});
    else if (isChanged)
        rules.publishChange(AclSubConfig::kRuleIdBySequence.id, &sequence);
}

bool hasRule(const AclSubConfig& rules, AclType type, std::uint32_t sequence) {
    const UniqueId id{sequence};
    return type == AclType::ipv6 ? rules.ip6RuleById().find(id) != nullptr
                                 : rules.ipRuleById().find(id) != nullptr;
}

Place placeOf(AclType type, const Orin::String& name) {
    return {type == AclType::ipv6 ? Places::kIp6Lists : Places::kIpLists, name};
}

Place subPlaceOf(const Place& list) {
    return list.part("aclSubConfig");
}

Place sequencePlaceOf(const Place& list, std::uint32_t sequence) {
    return list.member("aclSubConfig/ruleIdBySequence", sequence);
}

Place rulePlaceOf(const Place& list, AclType type, std::uint32_t sequence) {
    return list.member(
        type == AclType::ipv6 ? "aclSubConfig/ip6RuleById" : "aclSubConfig/ipRuleById", sequence);
}

/// Stands for an entry of others that was null before the configuration made it a list.
Place nullPlaceOf(const Place& list) {
    return list.part("null");
}

}  // namespace

AccessListWriter::AccessListWriter(Orin::Ptr<Acl::Input::Config> config, Ownership& ownership)
    : config_(std::move(config)), ownership_(ownership) {}

void AccessListWriter::removeGoing(const Difference& difference) {
    difference.eachEarlierTerm([&](const TermChange& term) {
        if (term.earlier->term->conditions.empty()) return;
        if (valuesFor(aclTypeOf(*term.earlier), term.later).empty()) remove(*term.earlier);
    });
}

void AccessListWriter::remove(const TermOfClassifier& earlier) {
    const AclType type = aclTypeOf(earlier);
    const Orin::String& name = earlier.term->objName;
    const auto* heldLists = config_->aclTypeConfig().find(type);
    if (heldLists == nullptr) return;
    const Orin::Ptr<AclTypeConfig> lists = *heldLists;
    const auto* held = lists->aclConfig().find(name);
    if (held == nullptr) return;
    const Orin::Ptr<AclConfig> list = *held;
    const Place place = placeOf(type, name);
    if (ownership_.leave(place))
        lists->aclConfigDel(name);
    else if (list)
        removeParts(*lists, *list, place, earlier.term->dscpValues());
}

void AccessListWriter::removeParts(AclTypeConfig& lists, AclConfig& list, const Place& place,
                                   const Values& earlier) {
    const Place sub = subPlaceOf(place);
    const bool isListOwn =
        !ownership_.isOthers(place) && !ownership_.isOthers(sub) && !ownership_.holdsOthers(sub);
    if (isListOwn && ownership_.isOthers(nullPlaceOf(place))) {
        ownership_.forget(place);
        ownership_.noteOthers(place);
        ownership_.changed(place);
        lists.aclConfigIs(list.aclName(), nullptr);
        return;
    }
    const auto rules = list.aclSubConfig();
    if (!rules) return;
    if (ownership_.leave(sub))
        list.aclSubConfigIs(nullptr);
    else
        changeRules({*rules, list.aclType(), place}, earlier, {});
}

void AccessListWriter::writeComing(const Difference& difference) {
    writeLists(AclType::ipv4, difference);
    writeLists(AclType::ipv6, difference);
}

void AccessListWriter::writeLists(AclType type, const Difference& difference) {
    const auto* held = config_->aclTypeConfig().find(type);
    const auto lists = held != nullptr ? *held : AclTypeConfig::create(type);
    difference.eachLaterTerm([&](const TermChange& term) {
        if (aclTypeOf(*term.later) != type || term.later->term->conditions.empty()) return;
        write(*lists, *term.later, valuesFor(type, term.earlier));
    });
    if (lists->aclConfig().empty()) return;
    if (held == nullptr)
        ownership_.created(Place(type == AclType::ipv6 ? Places::kIp6Type : Places::kIpType));
    config_->aclTypeConfigIs(lists);
}

void AccessListWriter::write(AclTypeConfig& lists, const TermOfClassifier& later,
                             const Values& earlier) {
    const Orin::String& name = later.term->objName;
    const Place place = placeOf(lists.aclType(), name);
    const Values values = later.term->dscpValues();
    const auto* held = lists.aclConfig().find(name);
    if (held != nullptr) describe(place, !*held, !earlier.empty());
    // A list that is there but not configured is none.
    if (held != nullptr && *held) {
        writeRules(*Orin::Ptr<AclConfig>(*held), place, earlier, values);
        return;
    }
    const auto list = AclConfig::create(name, lists.aclType());
    writeRules(*list, place, {}, values);
    ownership_.created(place);
    lists.aclConfigIs(name, list);
}

void AccessListWriter::describe(const Place& place, bool isNullEntry, bool wasDescribed) {
    ownership_.describe(place, wasDescribed);
    if (!isNullEntry || !ownership_.isOthers(place)) return;
    // The list that takes the place of the null entry is the configuration's own.
    ownership_.forget(place);
    ownership_.noteOthers(nullPlaceOf(place));
}

void AccessListWriter::writeRules(AclConfig& list, const Place& place, const Values& earlier,
                                  const Values& later) {
    const auto held = list.aclSubConfig();
    if (held) ownership_.describe(subPlaceOf(place), !earlier.empty());
    const auto rules = held ? held : AclSubConfig::create();
    changeRules({*rules, list.aclType(), place}, earlier, later);
    if (!held) list.aclSubConfigIs(rules);
}

void AccessListWriter::changeRules(const ListOfRules& list, const Values& earlier,
                                   const Values& later) {
    const auto& [rules, type, place] = list;
    describeRules(list, earlier, later);
    // All rules are as they should be before the first is told: whoever reads them then reads what
    // is nearest to the new list.
    std::vector<bool> isChanged(later.size());
    bool isAnyChanged = earlier.size() != later.size();
    for (std::size_t at = 0; at < later.size(); ++at) {
        isChanged[at] = ruleIs(rules, type, sequenceOf(at), later[at]);
        isAnyChanged = isAnyChanged || isChanged[at] || !isSequenced(rules, sequenceOf(at));
    }
    std::vector<std::uint32_t> going;
    for (std::size_t at = later.size(); at < earlier.size(); ++at) {
        const std::uint32_t sequence = sequenceOf(at);
        if (ownership_.leave(sequencePlaceOf(place, sequence))) going.push_back(sequence);
        if (ownership_.leave(rulePlaceOf(place, type, sequence))) ruleDel(rules, type, sequence);
    }
    if (isAnyChanged) ownership_.changed(subPlaceOf(place));
    for (std::size_t at = 0; at < later.size(); ++at)
        tellRule(rules, sequenceOf(at), isChanged[at]);
    for (const std::uint32_t sequence : going)
        rules.ruleIdBySequenceDel(sequence);
}

void AccessListWriter::describeRules(const ListOfRules& list, const Values& earlier,
                                     const Values& later) {
    const auto& [rules, type, place] = list;
    for (std::size_t at = earlier.size(); at < later.size(); ++at) {
        const std::uint32_t sequence = sequenceOf(at);
        if (rules.ruleIdBySequence().find(sequence) != nullptr)
            ownership_.describe(sequencePlaceOf(place, sequence), false);
        if (hasRule(rules, type, sequence))
            ownership_.describe(rulePlaceOf(place, type, sequence), false);
    }
}

}  // namespace QosAgent
