#include "platform/Acl/AclConfig.h"

#include "platform/Vex/Derive.h"

namespace Acl {

constinit const Vex::TypeRecord AclConfig::kTypeRecord = Vex::recordOf<AclConfig>();

AclConfig::AclConfig(const Orin::String& aclName, AclType aclType)
    : aclName_(aclName), aclType_(aclType) {}
AclConfig::~AclConfig() = default;

void AclConfig::aclSubConfigIs(const Orin::Ptr<AclSubConfig>& aclSubConfig) {
    attributeIs(kAclSubConfig.id, aclSubConfig_, aclSubConfig);
}

}  // namespace Acl
