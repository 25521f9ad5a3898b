#pragma once

#include <cstdint>

#include "platform/Orin/Export.h"
#include "platform/Orin/String.h"
#include "platform/Vex/FlatMap.h"
#include "platform/Vex/Row.h"

namespace Qos {

/// One class of a policy map: the actions on the traffic of a class map.
class PLATFORM_API PolicyMapClass {
public:
    static constexpr std::string_view kTypeName = "Qos::PolicyMapClass";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{Vex::field("action", 1, &PolicyMapClass::action)};
    }
    /// The id of the action that sets the traffic class.
    static constexpr std::uint32_t kSetTrafficClass = 4;

    /// The value of each action, by action id.
    Vex::FlatMap<std::uint32_t, std::uint32_t> action;

    friend bool operator==(const PolicyMapClass&, const PolicyMapClass&) = default;
};

}  // namespace Qos
