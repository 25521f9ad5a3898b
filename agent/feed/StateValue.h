#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace QosAgent {

/// The DSCP conditions of one address family of a published term.
struct StateConditions {
    std::optional<std::uint8_t> dscp;
    std::vector<std::uint8_t> dscpSet;

    friend bool operator==(const StateConditions&, const StateConditions&) = default;
};

/// A published term.
struct StateTerm {
    std::string id;
    std::string stateId;
    /// False if no condition was ever published; both families are empty then.
    bool hasConditions = false;
    StateConditions ipv4;
    StateConditions ipv6;
    /// Absent if no action was ever published; an empty text means no group.
    std::optional<std::string> targetGroup;

    friend bool operator==(const StateTerm&, const StateTerm&) = default;
};

/// A value of the state tree as plain data that any thread may read: the name and type of a
/// classifier, or one of its terms.
struct StateValue {
    std::string classifier;
    std::string type;               ///< `IPV4` or `IPV6`; empty for a term
    std::optional<StateTerm> term;  ///< absent for a classifier's own state
    std::string json;               ///< the value as compact JSON, as in `print` `state`

    friend bool operator==(const StateValue&, const StateValue&) = default;
};

using StateValuePtr = std::shared_ptr<const StateValue>;

}  // namespace QosAgent
