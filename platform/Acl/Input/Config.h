#pragma once

#include "platform/Acl/Input/AclTypeConfig.h"
#include "platform/Vex/Entity.h"

namespace Acl::Input {

/// The access lists configured at the device's command line; mounted at "acl/config/cli".
class PLATFORM_API Config final : public Vex::Entity<Config> {
public:
    static constexpr std::string_view kTypeName = "Acl::Input::Config";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<AclType> kAclTypeConfig{"aclTypeConfig", 258};
    static constexpr auto fields() {
        return std::tuple{Vex::published(kAclTypeConfig, &Config::aclTypeConfig_)};
    }
    using AclTypeConfigs =
        Vex::HashMap2018<AclType, Orin::Ptr<AclTypeConfig>, Vex::seedOf("Config.aclTypeConfig")>;

    ~Config() override;

    const AclTypeConfigs& aclTypeConfig() const noexcept { return aclTypeConfig_; }
    void aclTypeConfigIs(const Orin::Ptr<AclTypeConfig>& aclTypeConfig);
    Orin::Ptr<AclTypeConfig> aclTypeConfigDel(AclType aclType);

private:
    AclTypeConfigs aclTypeConfig_;
};

}  // namespace Acl::Input
