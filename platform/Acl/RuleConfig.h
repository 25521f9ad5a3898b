#pragma once

#include <cstdint>

#include "platform/Orin/Export.h"
#include "platform/Vex/Row.h"

namespace Acl {

/// The base class of the filters of all address families.
struct IpFilterBase {
    friend bool operator==(const IpFilterBase&, const IpFilterBase&) = default;
};

/// The base class of the rules of all address families.
struct RuleConfig {
    friend bool operator==(const RuleConfig&, const RuleConfig&) = default;
};

/// The match of an IPv4 rule, as far as it concerns QoS.
struct PLATFORM_API IpFilter : IpFilterBase {
    static constexpr std::string_view kTypeName = "Acl::IpFilter";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::field("dscpValue", 1, &IpFilter::dscpValue),
            Vex::field("dscpEnabled", 2, &IpFilter::dscpEnabled),
        };
    }

    IpFilter() noexcept = default;
    IpFilter(std::uint8_t value, bool enabled) noexcept : dscpValue(value), dscpEnabled(enabled) {}

    std::uint8_t dscpValue = 0;  ///< the DSCP that is matched
    bool dscpEnabled = false;    ///< whether the rule matches on DSCP at all

    friend bool operator==(const IpFilter&, const IpFilter&) = default;
};

/// The match of an IPv6 rule, as far as it concerns QoS: the bits of the traffic class (RFC 8200)
/// that the mask selects. The DSCP is the upper six bits of the traffic class (RFC 2474).
struct PLATFORM_API Ip6Filter : IpFilterBase {
    static constexpr std::string_view kTypeName = "Acl::Ip6Filter";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::field("trafficClass", 1, &Ip6Filter::trafficClass),
            Vex::field("trafficClassMask", 2, &Ip6Filter::trafficClassMask),
        };
    }

    Ip6Filter() noexcept = default;
    Ip6Filter(std::uint8_t value, std::uint8_t mask) noexcept
        : trafficClass(value), trafficClassMask(mask) {}

    std::uint8_t trafficClass = 0;
    std::uint8_t trafficClassMask = 0;

    friend bool operator==(const Ip6Filter&, const Ip6Filter&) = default;
};

/// A rule of an IPv4 access list.
struct PLATFORM_API IpRuleConfig : RuleConfig {
    static constexpr std::string_view kTypeName = "Acl::IpRuleConfig";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{Vex::field("filter", 1, &IpRuleConfig::filter)};
    }

    IpRuleConfig() noexcept = default;
    IpRuleConfig(const IpFilter& matched) noexcept : filter(matched) {}

    IpFilter filter;

    friend bool operator==(const IpRuleConfig&, const IpRuleConfig&) = default;
};

/// A rule of an IPv6 access list.
struct PLATFORM_API Ip6RuleConfig : RuleConfig {
    static constexpr std::string_view kTypeName = "Acl::Ip6RuleConfig";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{Vex::field("filter", 1, &Ip6RuleConfig::filter)};
    }

    Ip6RuleConfig() noexcept = default;
    Ip6RuleConfig(const Ip6Filter& matched) noexcept : filter(matched) {}

    Ip6Filter filter;

    friend bool operator==(const Ip6RuleConfig&, const Ip6RuleConfig&) = default;
};

/// The DSCP is the upper six bits of the traffic class (RFC 2474).
inline constexpr unsigned kDscpShift = 2;
inline constexpr unsigned kWholeDscp = 63;

/// Returns true if the rule matches a DSCP: an IPv4 rule if `dscpEnabled` is set, an IPv6 rule if
/// its mask covers the whole DSCP.
constexpr bool matchesDscp(const IpRuleConfig& rule) noexcept {
    return rule.filter.dscpEnabled;
}
constexpr bool matchesDscp(const Ip6RuleConfig& rule) noexcept {
    return rule.filter.trafficClassMask >> kDscpShift == kWholeDscp;
}
/// Returns the DSCP; the rule must match one. An IPv4 rule may have a value over 63.
constexpr std::uint8_t dscpOf(const IpRuleConfig& rule) noexcept {
    return rule.filter.dscpValue;
}
constexpr std::uint8_t dscpOf(const Ip6RuleConfig& rule) noexcept {
    return static_cast<std::uint8_t>(rule.filter.trafficClass >> kDscpShift);
}

}  // namespace Acl
