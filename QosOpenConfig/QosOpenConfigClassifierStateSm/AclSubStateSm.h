#pragma once

#include <cstddef>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/StateWriter.h"
#include "platform/Acl/AclSubConfig.h"
#include "platform/QosOc/AclNameAndType.h"
#include "platform/Vex/Reactor.h"

namespace QosOc {

/// Writes the rules of one access list as the conditions of its term.
class AclSubStateSm final : public Vex::Reactor<AclSubStateSm> {
public:
    static constexpr std::string_view kTypeName = "QosOc::AclSubStateSm";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::watched("aclSubConfig", 1, &AclSubStateSm::aclSubConfig_, aclSubConfigDispatch),
            Vex::given("aclNameAndType", 2, &AclSubStateSm::aclNameAndType_),
            Vex::given("classifierStateDir", 3, &AclSubStateSm::classifierStateDir_),
            Vex::own("dscpValueSet", 4, &AclSubStateSm::dscpValueSet_),
        };
    }

    AclSubStateSm(const Orin::Ptr<const Acl::AclSubConfig>& aclSubConfig,
                  const Orin::Ptr<const AclNameAndType>& aclNameAndType,
                  const StateDir& classifierStateDir);
    ~AclSubStateSm() override { stop(); }
    static Orin::Ptr<AclSubStateSm> AclSubStateSmIs(
        const Orin::Ptr<const Acl::AclSubConfig>& aclSubConfig,
        const Orin::Ptr<const AclNameAndType>& aclNameAndType, const StateDir& classifierStateDir);

    /// `dscpValueSet` is for access by the type record; the machine does not use it.
    const Orin::Vector<unsigned char>& dscpValueSet() const noexcept { return dscpValueSet_; }
    /// Throws `std::out_of_range` if the index is not less than the size.
    void dscpValueSetIs(std::size_t index, unsigned char value);
    void dscpValueSetPush(unsigned char value);
    /// Removes the last value and returns it. Throws `std::out_of_range` if there is none.
    unsigned char dscpValueSetPop();
    void dscpValueSetPopAll();

    void handleInitialized();
    void handleAclRules();
    /// Empties the term's conditions.
    void doPrepareToDie();

    static constexpr Orin::Dispatch aclSubConfigDispatch =
        Vex::dispatchTo<AclSubStateSm, Vex::On<Acl::AclSubConfig::kRuleIdBySequence,
                                               &AclSubStateSm::handleAclRules>>;

private:
    /// Returns the DSCP values that the rules match, in the order of the rules.
    void readDscps(Orin::Vector<unsigned char>& values) const;

    Vex::Watched<Acl::AclSubConfig> aclSubConfig_;
    Orin::Ptr<const AclNameAndType> aclNameAndType_;
    StateDir classifierStateDir_;
    Orin::Vector<unsigned char> dscpValueSet_;
};

Orin::Ptr<AclSubStateSm> aclSubStateSmFactory(
    const Orin::Ptr<const Acl::AclSubConfig>& aclSubConfig,
    const Orin::Ptr<const AclNameAndType>& aclNameAndType, const StateDir& classifierStateDir);

}  // namespace QosOc

extern template class Vex::Reactor<QosOc::AclSubStateSm>;
