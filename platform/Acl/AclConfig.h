#pragma once

#include "platform/Acl/AclSubConfig.h"
#include "platform/Acl/AclType.h"
#include "platform/Orin/String.h"
#include "platform/Vex/Entity.h"

namespace Acl {

/// A configured access list.
class PLATFORM_API AclConfig final : public Vex::Entity<AclConfig> {
public:
    static constexpr std::string_view kTypeName = "Acl::AclConfig";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<> kAclSubConfig{"aclSubConfig", 267};
    static constexpr auto fields() {
        return std::tuple{
            Vex::key("aclName", 265, &AclConfig::aclName_),
            Vex::outerKey("aclType", 266, &AclConfig::aclType_),
            Vex::published(kAclSubConfig, &AclConfig::aclSubConfig_),
        };
    }

    AclConfig(const Orin::String& aclName, AclType aclType);
    ~AclConfig() override;

    const Orin::String& aclName() const noexcept { return aclName_; }
    AclType aclType() const noexcept { return aclType_; }
    /// Null when there is none.
    const Orin::Ptr<AclSubConfig>& aclSubConfig() const noexcept { return aclSubConfig_; }
    void aclSubConfigIs(const Orin::Ptr<AclSubConfig>& aclSubConfig);

private:
    Orin::String aclName_;
    AclType aclType_;
    Orin::Ptr<AclSubConfig> aclSubConfig_;
};

}  // namespace Acl
