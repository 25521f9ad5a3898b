#pragma once

#include "platform/Acl/AclConfig.h"
#include "platform/Vex/Entity.h"

namespace Acl::Input {

/// The configured access lists of one type.
class PLATFORM_API AclTypeConfig final : public Vex::Entity<AclTypeConfig> {
public:
    static constexpr std::string_view kTypeName = "Acl::Input::AclTypeConfig";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<Orin::String> kAclConfig{"aclConfig", 259};
    static constexpr auto fields() {
        return std::tuple{
            Vex::key("aclType", 258, &AclTypeConfig::aclType_).hidden(),
            Vex::published(kAclConfig, &AclTypeConfig::aclConfig_).nullable(),
        };
    }
    /// By name, ascending. A null entry is an access list that exists but is not configured.
    using AclConfigs = Vex::OrderedMap<Orin::String, Orin::Ptr<AclConfig>,
                                       Vex::seedOf("AclTypeConfig.aclConfig")>;

    explicit AclTypeConfig(AclType aclType);
    ~AclTypeConfig() override;

    AclType aclType() const noexcept { return aclType_; }
    const AclConfigs& aclConfig() const noexcept { return aclConfig_; }
    /// `aclConfig` may be null.
    void aclConfigIs(const Orin::String& aclName, const Orin::Ptr<AclConfig>& aclConfig);
    Orin::Ptr<AclConfig> aclConfigDel(const Orin::String& aclName);

private:
    AclType aclType_;
    AclConfigs aclConfig_;
};

}  // namespace Acl::Input
