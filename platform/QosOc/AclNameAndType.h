#pragma once

#include "platform/Acl/AclType.h"
#include "platform/Orin/String.h"
#include "platform/Vex/Entity.h"

namespace QosOc {

/// Name and type of an access list. Immutable.
class PLATFORM_API AclNameAndType final : public Vex::Entity<AclNameAndType> {
public:
    static constexpr std::string_view kTypeName = "QosOc::AclNameAndType";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::key("aclName", 1, &AclNameAndType::aclName_),
            Vex::outerKey("aclType", 2, &AclNameAndType::aclType_),
        };
    }

    AclNameAndType(const Orin::String& aclName, Acl::AclType aclType);
    ~AclNameAndType() override;

    const Orin::String& aclName() const noexcept { return aclName_; }
    Acl::AclType aclType() const noexcept { return aclType_; }

private:
    Orin::String aclName_;
    Acl::AclType aclType_;
};

}  // namespace QosOc
