#include "platform/QosOc/AclNameAndType.h"

#include "platform/Vex/Derive.h"

namespace QosOc {

constinit const Vex::TypeRecord AclNameAndType::kTypeRecord = Vex::recordOf<AclNameAndType>();

AclNameAndType::AclNameAndType(const Orin::String& aclName, Acl::AclType aclType)
    : aclName_(aclName), aclType_(aclType) {}
AclNameAndType::~AclNameAndType() = default;

}  // namespace QosOc
