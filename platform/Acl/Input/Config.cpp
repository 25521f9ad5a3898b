#include "platform/Acl/Input/Config.h"

#include "platform/Vex/Derive.h"

namespace Acl::Input {

constinit const Vex::TypeRecord Config::kTypeRecord = Vex::recordOf<Config>();

Config::~Config() = default;

void Config::aclTypeConfigIs(const Orin::Ptr<AclTypeConfig>& aclTypeConfig) {
    memberIs(kAclTypeConfig.id, aclTypeConfig_, aclTypeConfig->aclType(), aclTypeConfig);
}

Orin::Ptr<AclTypeConfig> Config::aclTypeConfigDel(AclType aclType) {
    return memberDel(kAclTypeConfig.id, aclTypeConfig_, aclType).value_or(nullptr);
}

}  // namespace Acl::Input
