#include "QosOpenConfig/QosOpenConfigClassifierStateSm/AclSubStateSm.h"

#include <optional>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/Trace.h"
#include "platform/QosOc/Naming.h"
#include "platform/Vex/Assert.h"
#include "platform/Vex/Derive.h"
#include "platform/Vex/Errors.h"

namespace QosOc {
namespace {

constexpr auto kHandleInitialized =
    tracePoint("handleInitialized", "void QosOc::AclSubStateSm::handleInitialized()", 266);
constexpr auto kDoPrepareToDie =
    tracePoint("doPrepareToDie", "void QosOc::AclSubStateSm::doPrepareToDie()", 252);
constexpr auto kHandleAclRules =
    tracePoint("handleAclRules", "void QosOc::AclSubStateSm::handleAclRules()", 206);
constexpr auto kHandleAclRulesEmpty =
    tracePoint("handleAclRules", "void QosOc::AclSubStateSm::handleAclRules()", 215);
constexpr unsigned kUnexpectedAclTypeLine = 240;

/// The DSCP is the upper six bits of the traffic class (RFC 2474).
constexpr unsigned kDscpShift = 2;
constexpr unsigned kWholeDscp = 63;

std::optional<unsigned char> dscpOf(const Acl::IpRuleConfig* rule) {
    if (rule == nullptr || !rule->filter.dscpEnabled) return std::nullopt;
    return rule->filter.dscpValue;
}

std::optional<unsigned char> dscpOf(const Acl::Ip6RuleConfig* rule) {
    if (rule == nullptr || rule->filter.trafficClassMask >> kDscpShift != kWholeDscp)
        return std::nullopt;
    return static_cast<unsigned char>(rule->filter.trafficClass >> kDscpShift);
}

/// The DSCP that a rule matches, if any; a rule that is missing matches none.
std::optional<unsigned char> dscpOf(const Acl::AclSubConfig& config, Acl::AclType aclType,
                                    Ovk::UniqueId ruleId) {
    switch (aclType) {
        case Acl::AclType::ipv4:
            return dscpOf(config.ipRuleById().find(ruleId));
        case Acl::AclType::ipv6:
            return dscpOf(config.ip6RuleById().find(ruleId));
        default:
            Vex::SassertHelper("false", "Unexpected ACL Type")
                .fail("\"false\" == nullptr", kSource, kUnexpectedAclTypeLine,
                      kHandleAclRules.signature);
    }
}

}  // namespace

constinit const Vex::TypeRecord AclSubStateSm::kTypeRecord = Vex::recordOf<AclSubStateSm>();

AclSubStateSm::AclSubStateSm(const Orin::Ptr<const Acl::AclSubConfig>& aclSubConfig,
                             const Orin::Ptr<const AclNameAndType>& aclNameAndType,
                             const StateDir& classifierStateDir)
    : aclSubConfig_(aclSubConfig),
      aclNameAndType_(aclNameAndType),
      classifierStateDir_(classifierStateDir) {
    start();
}

Orin::Ptr<AclSubStateSm> AclSubStateSm::AclSubStateSmIs(
    const Orin::Ptr<const Acl::AclSubConfig>& aclSubConfig,
    const Orin::Ptr<const AclNameAndType>& aclNameAndType, const StateDir& classifierStateDir) {
    return create(aclSubConfig, aclNameAndType, classifierStateDir);
}

Orin::Ptr<AclSubStateSm> aclSubStateSmFactory(
    const Orin::Ptr<const Acl::AclSubConfig>& aclSubConfig,
    const Orin::Ptr<const AclNameAndType>& aclNameAndType, const StateDir& classifierStateDir) {
    return AclSubStateSm::AclSubStateSmIs(aclSubConfig, aclNameAndType, classifierStateDir);
}

void AclSubStateSm::dscpValueSetIs(std::size_t index, unsigned char value) {
    if (index >= dscpValueSet_.size())
        Vex::throwMutatorIndexOutOfRange(index, dscpValueSet_.size());
    dscpValueSet_[index] = value;
}

void AclSubStateSm::dscpValueSetPush(unsigned char value) {
    dscpValueSet_.push(value);
}

unsigned char AclSubStateSm::dscpValueSetPop() {
    if (dscpValueSet_.empty()) Vex::throwMutatorVectorEmpty();
    return dscpValueSet_.pop();
}

void AclSubStateSm::dscpValueSetPopAll() {
    dscpValueSet_.clear();
}

void AclSubStateSm::handleInitialized() {
    traceOf(this, kHandleInitialized);
    handleAclRules();
}

void AclSubStateSm::handleAclRules() {
    traceOf(this, kHandleAclRules);
    const ClassifierKey& key = classifierKeyFromConfigObjName(aclNameAndType_->aclName());
    if (!key.isTerm()) return;
    if (aclSubConfig_->ruleIdBySequence().empty()) {
        traceOf(this, kHandleAclRulesEmpty,
                ", no rules present in the ACL: ", aclNameAndType_->aclName(),
                ", deleting the classifier term conditions");
        deleteClassifierTermCondition(classifierStateDir_, key.classifierName, key.termId, false);
        return;
    }
    Orin::Vector<unsigned char> values = dscpValues();
    addClassifierTermCondition(classifierStateDir_, key.classifierName,
                               classifierTypeFromAclType(aclNameAndType_->aclType()), key.termId,
                               values);
}

Orin::Vector<unsigned char> AclSubStateSm::dscpValues() const {
    Orin::Vector<unsigned char> values;
    for (const auto& rule : aclSubConfig_->ruleIdBySequence())
        if (const auto dscp = dscpOf(*aclSubConfig_, aclNameAndType_->aclType(), rule.value))
            values.push(*dscp);
    return values;
}

void AclSubStateSm::doPrepareToDie() {
    traceOf(this, kDoPrepareToDie);
    if (!aclNameAndType_) return;
    const ClassifierKey& key = classifierKeyFromConfigObjName(aclNameAndType_->aclName());
    if (key.isTerm())
        deleteClassifierTermCondition(classifierStateDir_, key.classifierName, key.termId, false);
}

}  // namespace QosOc

template class Vex::Reactor<QosOc::AclSubStateSm>;
