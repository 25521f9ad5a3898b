#pragma once

#include <cstdint>
#include <optional>

#include "platform/Orin/Export.h"
#include "platform/Orin/Vector.h"
#include "platform/Vex/Row.h"

namespace QosOc::Config {

/// The match conditions of a term for one address family: `term/conditions/ipv4` or `ipv6` of
/// openconfig-qos. A single DSCP and a set of them exclude each other in the model; this type holds
/// both.
class PLATFORM_API TermConditionsIpConfig {
public:
    static constexpr std::string_view kTypeName = "QosOc::Config::TermConditionsIpConfig";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::field("dscp", 1, &TermConditionsIpConfig::dscp),
            Vex::field("dscpSet", 2, &TermConditionsIpConfig::dscpSet),
        };
    }

    explicit TermConditionsIpConfig(std::optional<std::uint8_t> single = std::nullopt)
        : dscp(single) {}

    bool empty() const noexcept { return !dscp && dscpSet.empty(); }
    void dscpSetPush(std::uint8_t value) { dscpSet.push(value); }
    /// Returns true if these are the values, stored as `dscpsAre` stores them.
    bool hasDscps(const Orin::Vector<std::uint8_t>& values) const noexcept {
        if (values.size() == 1) return dscp == values[0] && dscpSet.empty();
        return !dscp && dscpSet == values;
    }
    /// Sets the values: a single one is stored as a DSCP, several as a set.
    void dscpsAre(const Orin::Vector<std::uint8_t>& values) {
        if (values.size() == 1) {
            dscp = values[0];
            dscpSet.clear();
        } else {
            dscpSet = values;
            dscp.reset();
        }
    }

    std::optional<std::uint8_t> dscp;
    /// In the order of the rules, with duplicates.
    Orin::Vector<std::uint8_t> dscpSet;

    friend bool operator==(const TermConditionsIpConfig&, const TermConditionsIpConfig&) = default;
};

}  // namespace QosOc::Config
