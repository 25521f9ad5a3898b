#pragma once

#include <cstdint>

#include "platform/Orin/String.h"
#include "platform/Qos/PolicyMapClass.h"
#include "platform/Vex/Entity.h"

namespace Qos {

/// A policy map as the device applies it. A writer must update the classes first and raise the
/// version last. A reader of the classes subscribes to the version.
class PLATFORM_API PolicyMapStatus final : public Vex::Entity<PolicyMapStatus> {
public:
    static constexpr std::string_view kTypeName = "Qos::PolicyMapStatus";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<> kVersion{"version", 263};
    static constexpr Vex::Attribute<Orin::String> kClasses{"classes", 264};
    static constexpr auto fields() {
        return std::tuple{
            Vex::key("pmapName", 262, &PolicyMapStatus::pmapName_),
            Vex::published(kVersion, &PolicyMapStatus::version_).announcing(),
            Vex::published(kClasses, &PolicyMapStatus::classes_),
        };
    }
    /// By class-map name.
    using Classes =
        Vex::HashMap2018<Orin::String, PolicyMapClass, Vex::seedOf("PolicyMapStatus.classes")>;

    explicit PolicyMapStatus(const Orin::String& pmapName);
    ~PolicyMapStatus() override;

    const Orin::String& pmapName() const noexcept { return pmapName_; }
    std::uint32_t version() const noexcept { return version_; }
    void versionIs(std::uint32_t version);
    const Classes& classes() const noexcept { return classes_; }
    void classIs(const Orin::String& cmapName, const PolicyMapClass& policyMapClass);
    void classDel(const Orin::String& cmapName);

private:
    Orin::String pmapName_;
    std::uint32_t version_ = 0;
    Classes classes_;
};

}  // namespace Qos
