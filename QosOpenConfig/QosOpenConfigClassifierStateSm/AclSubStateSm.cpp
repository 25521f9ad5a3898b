#include "QosOpenConfig/QosOpenConfigClassifierStateSm/AclSubStateSm.h"

#include <utility>

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

/// A buffer for the values of one computation, kept for the next one. A computation within another
/// one uses its own buffer.
class Values {
public:
    Values() noexcept : values_(std::exchange(kept, {})) {}
    ~Values() { kept = std::move(values_); }
    Values(const Values&) = delete;
    Values& operator=(const Values&) = delete;
    Orin::Vector<unsigned char>& operator*() noexcept { return values_; }

private:
    static inline Orin::Vector<unsigned char> kept;

    Orin::Vector<unsigned char> values_;
};

/// Sets `values` to the DSCPs of the rules that match one, in the order of their sequence numbers.
/// A missing rule matches none.
template <class Rules>
void valuesAre(Orin::Vector<unsigned char>& values,
               const Acl::AclSubConfig::RuleIdBySequence& sequence, const Rules& ruleById) {
    unsigned char* end = values.roomFor(sequence.size());
    typename Rules::Finder rules(ruleById);
    sequence.eachValue([&](Ovk::UniqueId ruleId) {
        const auto* rule = rules.find(ruleId);
        if (rule != nullptr && matchesDscp(*rule)) *end++ = dscpOf(*rule);
    });
    values.endIs(end);
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
    Values values;
    readDscps(*values);
    addClassifierTermCondition(classifierStateDir_, key.classifierName,
                               classifierTypeFromAclType(aclNameAndType_->aclType()), key.termId,
                               *values);
}

void AclSubStateSm::readDscps(Orin::Vector<unsigned char>& values) const {
    switch (aclNameAndType_->aclType()) {
        case Acl::AclType::ipv4:
            valuesAre(values, aclSubConfig_->ruleIdBySequence(), aclSubConfig_->ipRuleById());
            break;
        case Acl::AclType::ipv6:
            valuesAre(values, aclSubConfig_->ruleIdBySequence(), aclSubConfig_->ip6RuleById());
            break;
        default:
            Vex::SassertHelper("false", "Unexpected ACL Type")
                .fail("\"false\" == nullptr", kSource, kUnexpectedAclTypeLine,
                      kHandleAclRules.signature);
    }
}

void AclSubStateSm::doPrepareToDie() {
    traceOf(this, kDoPrepareToDie);
    const ClassifierKey& key = classifierKeyFromConfigObjName(aclNameAndType_->aclName());
    if (key.isTerm())
        deleteClassifierTermCondition(classifierStateDir_, key.classifierName, key.termId, false);
}

}  // namespace QosOc

template class Vex::Reactor<QosOc::AclSubStateSm>;
