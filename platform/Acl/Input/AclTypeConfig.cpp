#include "platform/Acl/Input/AclTypeConfig.h"

#include "platform/Vex/Derive.h"

namespace Acl::Input {

constinit const Vex::TypeRecord AclTypeConfig::kTypeRecord = Vex::recordOf<AclTypeConfig>();

AclTypeConfig::AclTypeConfig(AclType aclType) : aclType_(aclType) {}
AclTypeConfig::~AclTypeConfig() = default;

void AclTypeConfig::aclConfigIs(const Orin::String& aclName,
                                const Orin::Ptr<AclConfig>& aclConfig) {
    memberIs(kAclConfig.id, aclConfig_, aclName, aclConfig);
}

Orin::Ptr<AclConfig> AclTypeConfig::aclConfigDel(const Orin::String& aclName) {
    return memberDel(kAclConfig.id, aclConfig_, aclName).value_or(nullptr);
}

}  // namespace Acl::Input
