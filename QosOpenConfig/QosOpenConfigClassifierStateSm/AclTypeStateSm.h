#pragma once

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/AclStateSm.h"
#include "platform/Acl/Input/AclTypeConfig.h"

namespace QosOc {

/// Keeps one AclStateSm for each access list of a type. At its start it removes stale conditions,
/// of lists that do not exist any more, from the state tree.
class AclTypeStateSm final : public Vex::Reactor<AclTypeStateSm> {
public:
    static constexpr std::string_view kTypeName = "QosOc::AclTypeStateSm";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::watched("aclTypeConfig", 1, &AclTypeStateSm::aclTypeConfig_,
                         aclTypeConfigDispatch),
            Vex::given("classifierStateDir", 2, &AclTypeStateSm::classifierStateDir_),
            Vex::own("aclStateSm", 3, &AclTypeStateSm::aclStateSm_),
        };
    }

    AclTypeStateSm(const Orin::Ptr<const Acl::Input::AclTypeConfig>& aclTypeConfig,
                   const StateDir& classifierStateDir);
    ~AclTypeStateSm() override { stop(); }
    static Orin::Ptr<AclTypeStateSm> AclTypeStateSmIs(
        const Orin::Ptr<const Acl::Input::AclTypeConfig>& aclTypeConfig,
        const StateDir& classifierStateDir);

    const Orin::Ptr<AclStateSm>& aclStateSmIs(const Orin::Ptr<const Acl::AclConfig>& aclConfig,
                                              const StateDir& classifierStateDir);
    Orin::Ptr<AclStateSm> aclStateSmDel(const Orin::String& aclName);
    void aclStateSmDelAll();

    /// Creates no child for lists whose name means no term; a later change of such a list does.
    void handleInitialized();
    void handleAclConfig(const Orin::String& aclName);
    /// Removes the state of the lists that are still in the input.
    void doPrepareToDie();

    static constexpr Orin::Dispatch aclTypeConfigDispatch =
        Vex::dispatchTo<AclTypeStateSm, Vex::On<Acl::Input::AclTypeConfig::kAclConfig,
                                                &AclTypeStateSm::handleAclConfig>>;

private:
    Vex::Watched<Acl::Input::AclTypeConfig> aclTypeConfig_;
    StateDir classifierStateDir_;
    Vex::Children<Orin::String, AclStateSm, Vex::seedOf("AclTypeStateSm.aclStateSm")> aclStateSm_;
};

Orin::Ptr<AclTypeStateSm> aclTypeStateSmFactory(
    const Orin::Ptr<const Acl::Input::AclTypeConfig>& aclTypeConfig,
    const StateDir& classifierStateDir);

}  // namespace QosOc

extern template class Vex::Reactor<QosOc::AclTypeStateSm>;
