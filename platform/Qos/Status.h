#pragma once

#include "platform/Qos/ClassMapTypeStatus.h"
#include "platform/Qos/PolicyMapTypeStatus.h"
#include "platform/Vex/Entity.h"

namespace Qos {

/// The QoS status of the device; mounted at "qos/status".
class PLATFORM_API Status final : public Vex::Entity<Status> {
public:
    static constexpr std::string_view kTypeName = "Qos::Status";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<MapType> kPmapTypeStatus{"pmapTypeStatus", 298};
    static constexpr Vex::Attribute<MapType> kCmapTypeStatus{"cmapTypeStatus", 299};
    static constexpr auto fields() {
        return std::tuple{
            Vex::published(kPmapTypeStatus, &Status::pmapTypeStatus_),
            Vex::published(kCmapTypeStatus, &Status::cmapTypeStatus_),
        };
    }
    using PmapTypeStatus = Vex::HashMap2018<MapType, Orin::Ptr<PolicyMapTypeStatus>,
                                            Vex::seedOf("Status.pmapTypeStatus")>;
    using CmapTypeStatus = Vex::HashMap2018<MapType, Orin::Ptr<ClassMapTypeStatus>,
                                            Vex::seedOf("Status.cmapTypeStatus")>;

    ~Status() override;

    const PmapTypeStatus& pmapTypeStatus() const noexcept { return pmapTypeStatus_; }
    void pmapTypeStatusIs(const Orin::Ptr<PolicyMapTypeStatus>& pmapTypeStatus);
    Orin::Ptr<PolicyMapTypeStatus> pmapTypeStatusDel(MapType mapType);
    const CmapTypeStatus& cmapTypeStatus() const noexcept { return cmapTypeStatus_; }
    void cmapTypeStatusIs(const Orin::Ptr<ClassMapTypeStatus>& cmapTypeStatus);
    Orin::Ptr<ClassMapTypeStatus> cmapTypeStatusDel(MapType mapType);

private:
    PmapTypeStatus pmapTypeStatus_;
    CmapTypeStatus cmapTypeStatus_;
};

}  // namespace Qos
