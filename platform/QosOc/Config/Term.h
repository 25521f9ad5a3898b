#pragma once

#include <optional>

#include "platform/Orin/Export.h"
#include "platform/Orin/String.h"
#include "platform/QosOc/Config/TermConditionsIpConfig.h"
#include "platform/Vex/Row.h"

namespace QosOc::Config {

/// The match conditions of a term.
class PLATFORM_API TermConditions {
public:
    static constexpr std::string_view kTypeName = "QosOc::Config::TermConditions";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::field("ipv4", 1, &TermConditions::ipv4),
            Vex::field("ipv6", 2, &TermConditions::ipv6),
        };
    }

    TermConditionsIpConfig ipv4;
    TermConditionsIpConfig ipv6;

    friend bool operator==(const TermConditions&, const TermConditions&) = default;
};

/// The actions on the traffic that a term matches.
class PLATFORM_API TermActions {
public:
    static constexpr std::string_view kTypeName = "QosOc::Config::TermActions";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{Vex::field("targetGroup", 1, &TermActions::targetGroup)};
    }

    /// The forwarding group to which the traffic is sent; empty: none.
    Orin::String targetGroup;

    friend bool operator==(const TermActions&, const TermActions&) = default;
};

/// One term of a classifier: `classifier/terms/term` of openconfig-qos. A default-constructed term
/// means an absent one.
class PLATFORM_API Term {
public:
    static constexpr std::string_view kTypeName = "QosOc::Term";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::key("id", 1, &Term::id),
            Vex::field("stateId", 2, &Term::stateId).copyingKey(),
            Vex::field("conditions", 3, &Term::conditions),
            Vex::field("actions", 4, &Term::actions),
        };
    }

    Term() = default;
    /// Makes a term without conditions and actions.
    explicit Term(const Orin::String& termId) noexcept : id(termId), stateId(termId) {}

    /// The term's key in its collection.
    Orin::String id;
    Orin::String stateId;
    std::optional<TermConditions> conditions;
    std::optional<TermActions> actions;

    bool isEq(const Term& other) const { return *this == other; }
    friend bool operator==(const Term&, const Term&) = default;
};

}  // namespace QosOc::Config
