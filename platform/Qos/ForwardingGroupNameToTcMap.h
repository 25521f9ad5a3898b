#pragma once

#include <cstdint>

#include "platform/Orin/String.h"
#include "platform/Vex/Entity.h"

namespace Qos {

/// Which traffic class each forwarding group stands for.
class PLATFORM_API ForwardingGroupNameToTcMap final
    : public Vex::Entity<ForwardingGroupNameToTcMap> {
public:
    static constexpr std::string_view kTypeName = "Qos::ForwardingGroupNameToTcMap";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<Orin::String> kTc{"tc", 258};
    static constexpr auto fields() {
        return std::tuple{Vex::published(kTc, &ForwardingGroupNameToTcMap::tc_)};
    }
    /// By forwarding-group name.
    using Tc = Vex::HashMap2018<Orin::String, std::uint32_t,
                                Vex::seedOf("ForwardingGroupNameToTcMap.tc")>;

    ~ForwardingGroupNameToTcMap() override;

    const Tc& tc() const noexcept { return tc_; }
    void tcIs(const Orin::String& forwardingGroup, std::uint32_t trafficClass);
    void tcDel(const Orin::String& forwardingGroup);

private:
    Tc tc_;
};

}  // namespace Qos
