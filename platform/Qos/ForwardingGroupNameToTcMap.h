#pragma once

#include <cstdint>

#include "platform/Orin/String.h"
#include "platform/Qos/TcByForwardingGroup.h"
#include "platform/Vex/Entity.h"

namespace Qos {

/// The traffic class of each forwarding group.
class PLATFORM_API ForwardingGroupNameToTcMap final
    : public Vex::Entity<ForwardingGroupNameToTcMap> {
public:
    static constexpr std::string_view kTypeName = "Qos::ForwardingGroupNameToTcMap";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<Orin::String> kTc{"tc", 258};
    static constexpr auto fields() {
        return std::tuple{Vex::published(kTc, &ForwardingGroupNameToTcMap::tc_)};
    }

    ~ForwardingGroupNameToTcMap() override;

    const TcByForwardingGroup& tc() const noexcept { return tc_; }
    void tcIs(const Orin::String& forwardingGroup, std::uint32_t trafficClass);
    /// Returns the group with this traffic class: the least name in byte order if there are
    /// several, empty if there is none.
    Orin::String forwardingGroup(std::uint32_t trafficClass) const {
        return tc_.forwardingGroup(trafficClass);
    }
    void tcDel(const Orin::String& forwardingGroup);

private:
    TcByForwardingGroup tc_;
};

}  // namespace Qos
