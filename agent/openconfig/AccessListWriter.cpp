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
constexpr unsigned kDscpShift = 2;
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
        const auto trafficClass = static_cast<std::uint8_t>(dscp << kDscpShift);
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

/// Lets the readers of the rules know that this one is as it should be.
void tellRule(AclSubConfig& rules, std::uint32_t sequence, bool isChanged) {
    const UniqueId id{sequence};
    const UniqueId* held = rules.ruleIdBySequence().find(sequence);
    if (held == nullptr || *held != id)
        rules.ruleIdBySequenceIs(sequence, id);
    else if (isChanged)
        rules.publishChange(AclSubConfig::kRuleIdBySequence.id, &sequence);
}

}  // namespace

AccessListWriter::AccessListWriter(Orin::Ptr<Acl::Input::Config> config, Found& found)
    : config_(std::move(config)), found_(found) {}

void AccessListWriter::removeGoing(const Difference& difference) {
    eachTerm(difference.earlier, [&](const TermOfClassifier& earlier) {
        if (earlier.term->conditions.empty()) return;
        const auto later = counterpart(difference.later, earlier);
        if (valuesFor(aclTypeOf(earlier), later).empty()) remove(earlier);
    });
}

void AccessListWriter::remove(const TermOfClassifier& earlier) {
    const AclType type = aclTypeOf(earlier);
    const Orin::String& name = earlier.term->objName;
    const auto* heldLists = config_->aclTypeConfig().find(type);
    if (heldLists == nullptr) return;
    const Orin::Ptr<AclTypeConfig> lists = *heldLists;
    if (!found_.release(*lists, name)) {
        lists->aclConfigDel(name);
        return;
    }
    const auto* held = lists->aclConfig().find(name);
    if (held == nullptr || !*held || !(*held)->aclSubConfig()) return;
    changeRules(*Orin::Ptr<AclSubConfig>((*held)->aclSubConfig()), type, earlier.term->dscpValues(),
                {});
}

void AccessListWriter::writeComing(const Difference& difference) {
    writeLists(AclType::ipv4, difference);
    writeLists(AclType::ipv6, difference);
}

void AccessListWriter::writeLists(AclType type, const Difference& difference) {
    const auto* held = config_->aclTypeConfig().find(type);
    const auto lists = held != nullptr ? *held : AclTypeConfig::create(type);
    eachTerm(difference.later, [&](const TermOfClassifier& later) {
        if (aclTypeOf(later) != type || later.term->conditions.empty()) return;
        write(*lists, later, valuesFor(type, counterpart(difference.earlier, later)));
    });
    if (!lists->aclConfig().empty()) config_->aclTypeConfigIs(lists);
}

void AccessListWriter::write(AclTypeConfig& lists, const TermOfClassifier& later,
                             const Values& earlier) {
    const Orin::String& name = later.term->objName;
    const Values values = later.term->dscpValues();
    const auto* held = lists.aclConfig().find(name);
    // A list that is there but not configured is none.
    if (held != nullptr && *held) {
        if (earlier.empty()) found_.note(lists, name);
        writeRules(*Orin::Ptr<AclConfig>(*held), earlier, values);
        return;
    }
    const auto list = AclConfig::create(name, lists.aclType());
    writeRules(*list, {}, values);
    lists.aclConfigIs(name, list);
}

void AccessListWriter::writeRules(AclConfig& list, const Values& earlier, const Values& later) {
    const auto held = list.aclSubConfig();
    const auto rules = held ? held : AclSubConfig::create();
    changeRules(*rules, list.aclType(), earlier, later);
    if (!held) list.aclSubConfigIs(rules);
}

void AccessListWriter::changeRules(AclSubConfig& rules, AclType type, const Values& earlier,
                                   const Values& later) {
    // All rules are as they should be before the first is told: whoever reads them then reads what
    // is nearest to the new list.
    const std::vector<std::uint32_t> going = goingSequences(rules, earlier, later);
    std::vector<bool> isChanged(later.size());
    for (std::size_t place = 0; place < later.size(); ++place)
        isChanged[place] = ruleIs(rules, type, sequenceOf(place), later[place]);
    for (const std::uint32_t sequence : going)
        ruleDel(rules, type, sequence);
    for (std::size_t place = 0; place < later.size(); ++place)
        tellRule(rules, sequenceOf(place), isChanged[place]);
    for (const std::uint32_t sequence : going)
        rules.ruleIdBySequenceDel(sequence);
}

std::vector<std::uint32_t> AccessListWriter::goingSequences(const AclSubConfig& rules,
                                                            const Values& earlier,
                                                            const Values& later) {
    for (std::size_t place = earlier.size(); place < later.size(); ++place)
        if (rules.ruleIdBySequence().find(sequenceOf(place)) != nullptr)
            found_.note(rules, sequenceOf(place));
    std::vector<std::uint32_t> going;
    for (std::size_t place = later.size(); place < earlier.size(); ++place)
        if (!found_.release(rules, sequenceOf(place))) going.push_back(sequenceOf(place));
    return going;
}

}  // namespace QosAgent
