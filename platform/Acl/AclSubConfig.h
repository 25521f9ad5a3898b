#pragma once

#include <cstdint>

#include "platform/Acl/RuleConfig.h"
#include "platform/Ovk/UniqueId.h"
#include "platform/Vex/Entity.h"

namespace Acl {

/// The rules of an access list. A writer must update the rules by id first and `ruleIdBySequence`
/// last. A reader of the rules subscribes to `ruleIdBySequence`.
class PLATFORM_API AclSubConfig final : public Vex::Entity<AclSubConfig> {
public:
    static constexpr std::string_view kTypeName = "Acl::AclSubConfig";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<std::uint32_t> kRuleIdBySequence{"ruleIdBySequence", 261};
    static constexpr Vex::Attribute<Ovk::UniqueId> kIpRuleById{"ipRuleById", 262};
    static constexpr Vex::Attribute<Ovk::UniqueId> kIp6RuleById{"ip6RuleById", 263};
    static constexpr auto fields() {
        return std::tuple{
            Vex::published(kRuleIdBySequence, &AclSubConfig::ruleIdBySequence_).announcing(),
            Vex::published(kIpRuleById, &AclSubConfig::ipRuleById_),
            Vex::published(kIp6RuleById, &AclSubConfig::ip6RuleById_),
        };
    }
    /// By sequence number, ascending.
    using RuleIdBySequence =
        Vex::OrderedMap<std::uint32_t, Ovk::UniqueId, Vex::seedOf("AclSubConfig.ruleIdBySequence")>;
    using IpRuleById =
        Vex::HashMap2018<Ovk::UniqueId, IpRuleConfig, Vex::seedOf("AclSubConfig.ipRuleById")>;
    using Ip6RuleById =
        Vex::HashMap2018<Ovk::UniqueId, Ip6RuleConfig, Vex::seedOf("AclSubConfig.ip6RuleById")>;

    ~AclSubConfig() override;

    const RuleIdBySequence& ruleIdBySequence() const noexcept { return ruleIdBySequence_; }
    void ruleIdBySequenceIs(std::uint32_t sequence, Ovk::UniqueId ruleId);
    void ruleIdBySequenceDel(std::uint32_t sequence);
    const IpRuleById& ipRuleById() const noexcept { return ipRuleById_; }
    void ipRuleByIdIs(Ovk::UniqueId ruleId, const IpRuleConfig& rule);
    void ipRuleByIdDel(Ovk::UniqueId ruleId);
    const Ip6RuleById& ip6RuleById() const noexcept { return ip6RuleById_; }
    void ip6RuleByIdIs(Ovk::UniqueId ruleId, const Ip6RuleConfig& rule);
    void ip6RuleByIdDel(Ovk::UniqueId ruleId);

private:
    RuleIdBySequence ruleIdBySequence_;
    IpRuleById ipRuleById_;
    Ip6RuleById ip6RuleById_;
};

}  // namespace Acl
