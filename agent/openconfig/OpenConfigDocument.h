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
    bool empty() const { return ipv4ClassifierName.empty() && ipv6ClassifierName.empty(); }
};

struct ConfiguredInterface {
    Orin::String id;
    AttachedPair pair;  ///< may be empty

    const Orin::String& key() const { return id; }
};

/// What refers to something by its name.
template <class User>
struct Users {
    Orin::String name;
    KeyedList<User> users;

    const Orin::String& key() const { return name; }
};

/// A name and nothing else.
struct Named {
    Orin::String name;

    const Orin::String& key() const { return name; }
};

/// Copies cost little, and share what they have in common.
struct OpenConfigDocument {
    KeyedList<ForwardingGroup> groups;
    KeyedList<ConfiguredClassifier> classifiers;
    KeyedList<ConfiguredInterface> interfaces;
    /// What the interfaces make of it: each distinct pair.
    KeyedList<AttachedPair> attachedPairs;
    /// The places of the interfaces that have a pair, as text, so that the first is the least.
    KeyedList<Users<Named>> placesOfPair;
    /// The pairs that have a classifier.
    KeyedList<Users<AttachedPair>> pairsOfClassifier;
    /// The terms that have a group as their target, by the names of their class maps.
    KeyedList<Users<Named>> termsOfGroup;
    /// Classifiers of types that are not carried.
    KeyedList<Named> otherClassifiers;

    bool empty() const {
        return groups.empty() && classifiers.empty() && interfaces.empty() &&
               otherClassifiers.empty();
    }

    /// Puts a term into a classifier, which need not be in the document. An `order` other than 0 is
    /// its place.
    void setTerm(ConfiguredClassifier& classifier, ConfiguredTerm term, std::uint64_t order = 0);
    void eraseTerm(ConfiguredClassifier& classifier, const Orin::String& id);
    /// Has no effect if there is none.
    void eraseClassifier(const Orin::String& name);
    void setInterface(ConfiguredInterface interface, std::uint64_t order = 0);
    void eraseInterface(const Orin::String& id);
    /// The place of a pair in the document: that of the first interface that has it.
    Orin::String placeOf(const AttachedPair& pair) const;

private:
    void attach(const ConfiguredInterface& interface);
    void detach(const ConfiguredInterface& interface);
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
