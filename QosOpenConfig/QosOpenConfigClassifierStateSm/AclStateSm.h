#pragma once

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/AclSubStateSm.h"
#include "platform/Acl/AclConfig.h"

namespace QosOc {

/// Creates the term of one access list, and keeps one AclSubStateSm for its rules.
class AclStateSm final : public Vex::Reactor<AclStateSm> {
public:
    static constexpr std::string_view kTypeName = "QosOc::AclStateSm";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::watched("aclConfig", 1, &AclStateSm::aclConfig_, aclConfigDispatch),
            Vex::given("classifierStateDir", 2, &AclStateSm::classifierStateDir_),
            Vex::own("aclNameAndType", 3, &AclStateSm::aclNameAndType_),
            Vex::own("aclSubStateSm", 4, &AclStateSm::aclSubStateSm_),
        };
    }

    AclStateSm(const Orin::Ptr<const Acl::AclConfig>& aclConfig,
               const StateDir& classifierStateDir);
    ~AclStateSm() override { stop(); }
    static Orin::Ptr<AclStateSm> AclStateSmIs(const Orin::Ptr<const Acl::AclConfig>& aclConfig,
                                              const StateDir& classifierStateDir);

    /// Replaces a child that was created from other inputs; the old one is silenced and removes no
    /// state. Throws `MutatorArgNullPointerException` if the first input is null.
    const Orin::Ptr<AclSubStateSm>& aclSubStateSmIs(
        const Orin::Ptr<const Acl::AclSubConfig>& aclSubConfig,
        const Orin::Ptr<const AclNameAndType>& aclNameAndType, const StateDir& classifierStateDir);
    Orin::Ptr<AclSubStateSm> aclSubStateSmDel();

    void handleInitialized();
    void handleAclSubConfig();
    /// Removes the term's conditions; the term stays.
    void doPrepareToDie();

    static constexpr Orin::Dispatch aclConfigDispatch =
        Vex::dispatchTo<AclStateSm,
                        Vex::On<Acl::AclConfig::kAclSubConfig, &AclStateSm::handleAclSubConfig>>;

private:
    void removeConditions();

    Vex::Watched<Acl::AclConfig> aclConfig_;
    StateDir classifierStateDir_;
    Orin::Ptr<const AclNameAndType> aclNameAndType_;
    Vex::Child<AclSubStateSm> aclSubStateSm_;
};

Orin::Ptr<AclStateSm> aclStateSmFactory(const Orin::Ptr<const Acl::AclConfig>& aclConfig,
                                        const StateDir& classifierStateDir);

}  // namespace QosOc

extern template class Vex::Reactor<QosOc::AclStateSm>;
