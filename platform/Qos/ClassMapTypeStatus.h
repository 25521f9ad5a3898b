#pragma once

#include "platform/Qos/ClassMapStatus.h"
#include "platform/Qos/MapType.h"
#include "platform/Vex/Entity.h"

namespace Qos {

/// The class maps of one map type.
class PLATFORM_API ClassMapTypeStatus final : public Vex::Entity<ClassMapTypeStatus> {
public:
    static constexpr std::string_view kTypeName = "Qos::ClassMapTypeStatus";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<Orin::String> kCmapStatus{"cmapStatus", 259};
    static constexpr auto fields() {
        return std::tuple{
            Vex::key("mapType", 258, &ClassMapTypeStatus::mapType_).hidden(),
            Vex::published(kCmapStatus, &ClassMapTypeStatus::cmapStatus_),
        };
    }
    /// By class-map name.
    using CmapStatus = Vex::HashMap2018<Orin::String, Orin::Ptr<ClassMapStatus>,
                                        Vex::seedOf("ClassMapTypeStatus.cmapStatus")>;

    explicit ClassMapTypeStatus(MapType mapType);
    ~ClassMapTypeStatus() override;

    MapType mapType() const noexcept { return mapType_; }
    const CmapStatus& cmapStatus() const noexcept { return cmapStatus_; }
    void cmapStatusIs(const Orin::Ptr<ClassMapStatus>& cmapStatus);
    Orin::Ptr<ClassMapStatus> cmapStatusDel(const Orin::String& cmapName);

private:
    MapType mapType_;
    CmapStatus cmapStatus_;
};

}  // namespace Qos
