#pragma once

#include "platform/Qos/MapType.h"
#include "platform/Qos/PolicyMapStatus.h"
#include "platform/Vex/Entity.h"

namespace Qos {

/// The policy maps of one map type.
class PLATFORM_API PolicyMapTypeStatus final : public Vex::Entity<PolicyMapTypeStatus> {
public:
    static constexpr std::string_view kTypeName = "Qos::PolicyMapTypeStatus";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<Orin::String> kPmapStatus{"pmapStatus", 259};
    static constexpr auto fields() {
        return std::tuple{
            Vex::key("mapType", 258, &PolicyMapTypeStatus::mapType_).hidden(),
            Vex::published(kPmapStatus, &PolicyMapTypeStatus::pmapStatus_),
        };
    }
    /// By policy-map name, ascending.
    using PmapStatus = Vex::OrderedMap<Orin::String, Orin::Ptr<PolicyMapStatus>,
                                       Vex::seedOf("PolicyMapTypeStatus.pmapStatus")>;

    explicit PolicyMapTypeStatus(MapType mapType);
    ~PolicyMapTypeStatus() override;

    MapType mapType() const noexcept { return mapType_; }
    const PmapStatus& pmapStatus() const noexcept { return pmapStatus_; }
    void pmapStatusIs(const Orin::Ptr<PolicyMapStatus>& pmapStatus);
    Orin::Ptr<PolicyMapStatus> pmapStatusDel(const Orin::String& pmapName);

private:
    MapType mapType_;
    PmapStatus pmapStatus_;
};

}  // namespace Qos
