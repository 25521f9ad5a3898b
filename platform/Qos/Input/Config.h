#pragma once

#include "platform/Qos/ForwardingGroupNameToTcMap.h"
#include "platform/Vex/Entity.h"

namespace Qos::Input {

/// The QoS configuration of the device's command line; mounted at "qos/input/config/cli".
class PLATFORM_API Config final : public Vex::Entity<Config> {
public:
    static constexpr std::string_view kTypeName = "Qos::Input::Config";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<> kForwardingGroupNameToTcMap{"forwardingGroupNameToTcMap", 258};
    static constexpr auto fields() {
        return std::tuple{
            Vex::published(kForwardingGroupNameToTcMap, &Config::forwardingGroupNameToTcMap_),
        };
    }

    ~Config() override;

    /// Null when there is none.
    const Orin::Ptr<ForwardingGroupNameToTcMap>& forwardingGroupNameToTcMap() const noexcept {
        return forwardingGroupNameToTcMap_;
    }
    void forwardingGroupNameToTcMapIs(const Orin::Ptr<ForwardingGroupNameToTcMap>& map);

private:
    Orin::Ptr<ForwardingGroupNameToTcMap> forwardingGroupNameToTcMap_;
};

}  // namespace Qos::Input
