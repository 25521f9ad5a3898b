#include "platform/Acl/AclSubConfig.h"

#include "platform/Vex/Derive.h"

namespace Acl {

constinit const Vex::TypeRecord IpFilter::kTypeRecord = Vex::recordOf<IpFilter>();
constinit const Vex::TypeRecord Ip6Filter::kTypeRecord = Vex::recordOf<Ip6Filter>();
constinit const Vex::TypeRecord IpRuleConfig::kTypeRecord = Vex::recordOf<IpRuleConfig>();
constinit const Vex::TypeRecord Ip6RuleConfig::kTypeRecord = Vex::recordOf<Ip6RuleConfig>();
constinit const Vex::TypeRecord AclSubConfig::kTypeRecord = Vex::recordOf<AclSubConfig>();

AclSubConfig::~AclSubConfig() = default;

void AclSubConfig::ruleIdBySequenceIs(std::uint32_t sequence, Ovk::UniqueId ruleId) {
    memberIs(kRuleIdBySequence.id, ruleIdBySequence_, sequence, ruleId);
}

void AclSubConfig::ruleIdBySequenceDel(std::uint32_t sequence) {
    memberDel(kRuleIdBySequence.id, ruleIdBySequence_, sequence);
}

void AclSubConfig::ipRuleByIdIs(Ovk::UniqueId ruleId, const IpRuleConfig& rule) {
    memberIs(kIpRuleById.id, ipRuleById_, ruleId, rule);
}

void AclSubConfig::ipRuleByIdDel(Ovk::UniqueId ruleId) {
    memberDel(kIpRuleById.id, ipRuleById_, ruleId);
}

void AclSubConfig::ip6RuleByIdIs(Ovk::UniqueId ruleId, const Ip6RuleConfig& rule) {
    memberIs(kIp6RuleById.id, ip6RuleById_, ruleId, rule);
}

void AclSubConfig::ip6RuleByIdDel(Ovk::UniqueId ruleId) {
    memberDel(kIp6RuleById.id, ip6RuleById_, ruleId);
}

}  // namespace Acl
