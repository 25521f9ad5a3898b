#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "agent/explain/NameIndex.h"
#include "platform/Acl/AclType.h"
#include "platform/Ovk/UniqueId.h"
#include "platform/Qos/ClassMapStatus.h"
#include "platform/Qos/PolicyMapStatus.h"
#include "platform/QosOc/Config/ClassifiersDir.h"
#include "platform/QosOc/State/ClassifiersDir.h"

/// What the database holds about a classifier and its terms: plain facts, no conclusions. All of it
/// refers to the database and is valid until the database changes.
namespace QosAgent {

/// A rule of an access list, in the sequence of which it takes part.
struct RuleEvidence {
    std::uint32_t sequence;
    Ovk::UniqueId id;
    std::optional<std::uint8_t> dscp;  ///< that the rule gives to the term
    std::string_view ignored;          ///< why it gives none: `missing`, `disabled` or `mask`
};

struct AccessListEvidence {
    Acl::AclType type;
    bool isConfigured;  ///< false: a null entry, or a list without sub-configuration
    std::vector<RuleEvidence> rules;

    /// True if a rule gives a DSCP value.
    bool counts() const;
};

/// A policy map that has a class made from the term.
struct PolicyMapEvidence {
    const Qos::PolicyMapStatus* policyMap;
    std::optional<std::uint32_t> trafficClass;  ///< that the class sets
    Orin::String targetGroup;                   ///< that has the traffic class; empty: none
};

struct ClassifierEvidence {
    Orin::String name;
    const QosOc::State::Classifier* state = nullptr;        ///< null: not in the state
    const QosOc::Config::Classifier* configured = nullptr;  ///< null: not configured
    bool hasOwnClassMap = false;                            ///< an ordinary class map of its name
    const MadeFromClassifier* made = nullptr;               ///< null: nothing

    bool isMade() const { return hasOwnClassMap || made != nullptr; }
    bool isKnown() const { return state != nullptr || configured != nullptr || isMade(); }
    /// True if some policy map names the classifier.
    bool isInPolicyMap() const;
    /// IPv4 for a classifier that is configured without a type, and for one that is not configured.
    QosOc::Classifier::Type configuredFamily() const;
};

/// DSCP values in the order of their rules.
using DscpValues = std::vector<std::uint8_t>;

struct TermEvidence {
    const ClassifierEvidence* classifier;
    Orin::String id;
    Orin::String objName;                              ///< of its class map and its access lists
    const QosOc::State::Term* state = nullptr;         ///< null: not in the state
    const QosOc::Config::Term* configured = nullptr;   ///< null: not configured
    const Qos::ClassMapStatus* classMap = nullptr;     ///< null: there is none
    std::vector<AccessListEvidence> accessLists = {};  ///< IPv4 first
    std::vector<PolicyMapEvidence> policyMaps = {};    ///< ascending by name

    bool isMade() const {
        return classMap != nullptr || !accessLists.empty() || !policyMaps.empty();
    }
    bool isKnown() const { return state != nullptr || configured != nullptr || isMade(); }
    /// True if a policy map names the classifier or has a class made from the term.
    bool isUsedByPolicyMap() const { return classifier->isInPolicyMap() || !policyMaps.empty(); }
};

/// The values of one family of a term, which may be null.
DscpValues dscpValues(const QosOc::Config::Term* term, QosOc::Classifier::Type family);
/// The target group of a term, which may be null; empty where it has none.
const Orin::String& targetGroup(const QosOc::Config::Term* term);

/// Reads evidence from a database. What it costs follows what it finds, not the size of the
/// database.
class EvidenceReader {
public:
    /// What is passed must outlive the reader.
    EvidenceReader(const Database& database, const NameIndex& index);

    const QosOc::Config::ClassifiersDir& configured() const;
    const QosOc::State::ClassifiersDir& state() const;
    ClassifierEvidence classifier(const Orin::String& name) const;
    /// `classifier` must outlive the result.
    TermEvidence term(const ClassifierEvidence& classifier, const Orin::String& id) const;
    /// Ids of all terms that are in the state, configured, or from which something was made;
    /// ascending.
    static Names termIds(const ClassifierEvidence& classifier);

private:
    const Qos::ClassMapStatus* classMap(const Orin::String& name) const;
    void addAccessList(TermEvidence& term, Acl::AclType type) const;
    void addPolicyMap(TermEvidence& term, const Orin::String& pmapName) const;

    const Database& database_;
    const NameIndex& index_;
};

}  // namespace QosAgent
