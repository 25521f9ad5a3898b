#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "agent/openconfig/KeyedList.h"
#include "platform/Orin/String.h"
#include "platform/QosOc/ClassifierType.h"
#include "platform/QosOc/Config/TermConditionsIpConfig.h"

/// What the agent carries of an OpenConfig QoS configuration, in the document's order.
namespace QosAgent {

struct ForwardingGroup {
    Orin::String name;
    /// Its place among the groups, from 0, until an earlier document says otherwise.
    std::uint32_t trafficClass;

    const Orin::String& key() const { return name; }
};

struct ConfiguredTerm {
    Orin::String id;
    /// The name of its class map and its access list.
    Orin::String objName;
    /// Those of the classifier's family; may be empty.
    QosOc::Config::TermConditionsIpConfig conditions;
    /// One of the forwarding groups; empty: none.
    Orin::String targetGroup;

    const Orin::String& key() const { return id; }
    /// What its access list matches, each value once: the single DSCP, then the set in its order.
    std::vector<std::uint8_t> dscpValues() const;
};

struct ConfiguredClassifier {
    Orin::String name;
    std::optional<QosOc::Classifier::Type> type;
    KeyedList<ConfiguredTerm> terms;

    const Orin::String& key() const { return name; }
    /// A classifier without a type is one for IPv4.
    QosOc::Classifier::Type family() const { return type.value_or(QosOc::Classifier::Type::IPV4); }
};

/// The classifiers that some interface has attached for its input. One of the two may be empty; the
/// others are configured, and of that family.
struct AttachedPair {
    /// The name of the pair's policy map.
    Orin::String pmapName;
    Orin::String ipv4ClassifierName;
    Orin::String ipv6ClassifierName;

    const Orin::String& key() const { return pmapName; }
};

struct OpenConfigDocument {
    KeyedList<ForwardingGroup> groups;
    KeyedList<ConfiguredClassifier> classifiers;
    KeyedList<AttachedPair> attachedPairs;

    bool empty() const { return groups.empty() && classifiers.empty() && attachedPairs.empty(); }
};

/// A term together with its classifier.
struct TermOfClassifier {
    const ConfiguredClassifier* classifier;
    const ConfiguredTerm* term;
};

/// The term of that classifier and id; nothing if there is none.
std::optional<TermOfClassifier> termOf(const OpenConfigDocument& document,
                                       const Orin::String& classifierName,
                                       const Orin::String& termId);

}  // namespace QosAgent
