#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "bench/floor/ChainMap.h"
#include "platform/Orin/Vector.h"

namespace QosBench {

struct LeanTerm {
    Name group = nullptr;
    Orin::Vector<std::uint8_t> dscps;
    std::uint32_t seen = 0;  ///< the last computation of a policy map that had it
};
struct LeanClassifier {
    ChainMap<Name, LeanTerm> terms;
};

/// The floor beside `Device`: the same database, the same events and the same state, by a program
/// that does nothing else. Events are applied straight to lean data; there are no machines, no
/// subscriptions, no records, no trace, and nobody to be told but one function.
class LeanDevice {
public:
    static constexpr std::size_t kClasses = 8;

    explicit LeanDevice(std::size_t classifiers, std::size_t termsEach = 1);

    std::size_t policyMaps() const noexcept { return policyMaps_.size(); }
    std::size_t terms() const noexcept { return classMaps_.size(); }
    std::size_t machines() const noexcept { return 3 * terms() + 3 * policyMaps() + 2; }
    std::string stateText() const;

    void start();
    void stop() {}
    void watchState();

    void changeClasses(std::size_t classes);
    void raiseVersion();
    void removePolicyMap();
    void addPolicyMap();
    void changeSpareForwardingGroup();
    void changeUsedForwardingGroup();
    void publishClassMap() { applyClassMap(termNames_.front()); }
    void removeClassMap();
    void addClassMap();
    void changeMatch();
    void giveRules(std::size_t rules);
    void addRule();
    void removeRule();
    void changeRule();
    void giveTwoLists();
    void replaceRules();
    void changeConfiguredAction();

private:
    using Term = LeanTerm;
    using Classifier = LeanClassifier;
    /// Which term the object of a name stands for.
    struct Key {
        Name classifier = nullptr;
        Name term = nullptr;
    };
    struct ClassMap {
        Key key;
        Name matched = nullptr;
    };
    struct Class {
        Key key;
        std::uint32_t tc;
    };
    struct PolicyMap {
        Name classifier = nullptr;
        std::uint32_t version = 0;
        std::vector<Class> classes;
    };
    struct Rule {
        std::uint8_t dscp = 0;
    };
    struct Slot {
        std::uint32_t sequence;
        const Rule* rule;
    };
    struct Rules {
        ChainMap<std::uint32_t, Rule> byId;
        std::vector<Slot> bySequence;
    };
    struct AccessList {
        Key key;
        std::shared_ptr<Rules> rules;
    };

    void addClassifier(std::size_t index, std::size_t terms);
    static void ruleIs(Rules& rules, std::uint32_t sequence);
    static std::shared_ptr<Rules> rulesFrom(std::uint32_t first, std::size_t count);

    void applyPolicyMap(const PolicyMap& policyMap);
    void applyClasses(const PolicyMap& policyMap);
    void applyClassMap(Name name);
    void applyAccessList(const AccessList& accessList);
    void applyConfiguredTerm(Name classifier, Name term, Name group);
    void groupIs(Name group, std::uint32_t tc);
    void groupOfTermIs(Term& term, Name group) const;
    Term& termMade(const Key& key) { return classifiers_[key.classifier].terms[key.term]; }

    Names names_;
    ChainMap<Name, PolicyMap> policyMaps_;
    ChainMap<Name, ClassMap> classMaps_;
    ChainMap<Name, AccessList> accessLists_;
    ChainMap<Name, std::uint32_t> tcByGroup_;
    ChainMap<std::uint32_t, Name> groupByTc_;  ///< no two groups have one traffic class here
    ChainMap<Name, ChainMap<Name, Name>> configured_;  ///< groups by term by classifier
    ChainMap<Name, unsigned> withPolicyMap_;
    ChainMap<Name, Classifier> classifiers_;
    std::uint32_t computation_ = 0;
    void (*tell_)(const Term&) = nullptr;
    /// What the verbs work on.
    Name pmapName_ = nullptr;
    PolicyMap* policyMap_ = nullptr;
    PolicyMap removedPolicyMap_;
    std::vector<Name> termNames_;
    ClassMap removedClassMap_;
    AccessList* accessList_ = nullptr;
    std::shared_ptr<Rules> otherRules_;
    std::uint32_t lastSequence_ = 1;
    Name configuredName_ = names_("configured");
    Name usedGroup_ = names_("group-0");
    Name otherGroup_ = names_("group-1");
    Name spareGroup_ = names_("spare");
    Name firstTerm_ = names_("term-0");
    bool isAlternate_ = false;
};

}  // namespace QosBench
