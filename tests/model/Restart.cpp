#include "tests/model/Restart.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "tests/model/Names.h"

namespace Model {
namespace {

/// What the inputs say of one term, whoever reacts to it.
struct Claims {
    bool isListed = false;       ///< an access list with a sub-configuration stands for it
    bool isClass = false;        ///< it is a class of a policy map
    bool isConfigured = false;   ///< it is a configured term
    bool isSwept = false;        ///< lists of one type name its classifier, and none names it
    bool isOfPolicyMap = false;  ///< its classifier is one of a policy map's two
};

bool isTerm(const std::string& object, const std::string& classifier, const std::string& id) {
    const TermName name = termNamed(object);
    return name && name.classifier == classifier && name.id == id;
}

void claimByLists(Claims& claims, const Inputs& inputs, const std::string& classifier,
                  const std::string& id) {
    for (const char* type : {"ipv4", "ipv6"}) {
        const Ref lists = inputs.root(kAclInput)->member("aclTypeConfig", type);
        if (!lists) continue;
        bool isClassifierNamed = false;
        bool isTermNamed = false;
        for (const Member& list : lists->members("aclConfig")) {
            isClassifierNamed |= termNamed(list.key).classifier == classifier;
            if (!isTerm(list.key, classifier, id)) continue;
            isTermNamed = true;
            claims.isListed |= list.thing && list.thing->one("aclSubConfig");
        }
        claims.isSwept |= isClassifierNamed && !isTermNamed;
    }
}

void claimByPolicyMaps(Claims& claims, const Inputs& inputs, const std::string& classifier,
                       const std::string& id) {
    const Ref policyMaps = inputs.root(kQosStatus)->member("pmapTypeStatus", "mapQos");
    if (!policyMaps) return;
    for (const Member& policyMap : policyMaps->members("pmapStatus")) {
        const ClassifierPair pair = classifiersOfPolicyMap(policyMap.key);
        if (pair.ipv4.empty() && pair.ipv6.empty()) continue;
        claims.isOfPolicyMap |= pair.ipv4 == classifier || pair.ipv6 == classifier;
        for (const Member& entry : policyMap.thing->members("classes"))
            claims.isClass |= isTerm(entry.key, classifier, id);
    }
}

Claims claimsOf(const Inputs& inputs, const std::string& classifier, const std::string& id) {
    Claims claims;
    claimByLists(claims, inputs, classifier, id);
    claimByPolicyMaps(claims, inputs, classifier, id);
    const Ref configured = inputs.root(kClassifierConfig)->member("classifier", classifier);
    if (configured && configured->one("terms"))
        claims.isConfigured = configured->one("terms")->member("term", id) != nullptr;
    return claims;
}

/// Compares one term before and after.
class TermComparison {
public:
    TermComparison(Start start, const Claims& claims) : start_(start), claims_(claims) {}

    std::string kindOfConditions(const PublishedTerm& before, const PublishedTerm& after) const {
        const auto isEmpty = [](const auto& conditions) {
            return *conditions == std::array<Conditions, 2>{};
        };
        if (start_ == Start::overNothing && !after.conditions)
            return isEmpty(before.conditions) ? "conditions kept empty" : "conditions kept";
        if (!after.conditions) return claims_.isSwept ? "conditions swept" : unexplained();
        if (!claims_.isListed) return unexplained();
        return isEmpty(after.conditions) ? "conditions emptied" : "conditions of the last list";
    }
    std::string kindOfActions(const PublishedTerm& before, const PublishedTerm& after) const {
        if (start_ == Start::overNothing && !after.targetGroup)
            return before.targetGroup->empty() ? "actions kept empty" : "actions kept";
        if (!after.targetGroup) return unexplained();
        if (after.targetGroup->empty() && claims_.isOfPolicyMap) return "actions cleared";
        return claims_.isClass || claims_.isConfigured ? "actions of the last writer"
                                                       : unexplained();
    }

private:
    static std::string unexplained() { return std::string(kUnexplained); }

    Start start_;
    Claims claims_;
};

/// Collects what differs.
class Comparison {
public:
    Comparison(const Inputs& inputs, const std::vector<std::string>& deleted, Start start)
        : inputs_(inputs), deleted_(deleted), start_(start) {}

    std::vector<Difference> differences;

    void compare(const Published& before, const Published& after) {
        const PublishedClassifier absent{};
        for (const PublishedClassifier& one : before) {
            const auto* other = named(after, one.name);
            if (other == nullptr) gone("classifier kept", one.name);
            compare(one, other == nullptr ? absent : *other, other != nullptr);
        }
        for (const PublishedClassifier& other : after) {
            if (named(before, other.name) != nullptr) continue;
            const bool isTaken = isDeleted(other.name);
            add(isTaken ? "classifier taken by a class map" : "classifier not announced",
                other.name);
            compare({other.name, other.type, {}}, other, true);
        }
    }

private:
    static const PublishedClassifier* named(const Published& published, const std::string& name) {
        for (const PublishedClassifier& each : published)
            if (each.name == name) return &each;
        return nullptr;
    }
    bool isDeleted(const std::string& what) const {
        return std::find(deleted_.begin(), deleted_.end(), what) != deleted_.end();
    }
    void add(std::string kind, const std::string& what) {
        const char* before = start_ == Start::overNothing ? "over nothing: " : "over the old: ";
        const bool isExplained = kind != kUnexplained;
        differences.push_back({isExplained ? before + kind : kind, before + kind + ": " + what});
    }
    /// A start deletes no classifier and no term.
    void gone(const char* kind, const std::string& what) {
        add(start_ == Start::overNothing ? kind : std::string(kUnexplained), what);
    }

    void compare(PublishedClassifier one, PublishedClassifier other, bool isThere) {
        if (isThere && one.type != other.type) gone("first writer's type", one.name);
        for (const PublishedTerm& before : one.terms.value_or(std::vector<PublishedTerm>())) {
            const std::string what = one.name + " " + shown(before);
            const PublishedTerm* const after = other.term(before.id);
            if (after == nullptr)
                gone("term kept", what);
            else
                compare(one.name, before, *after);
        }
        for (const PublishedTerm& after : other.terms.value_or(std::vector<PublishedTerm>()))
            if (one.term(after.id) == nullptr) came(one.name, after);
    }
    void compare(const std::string& classifier, const PublishedTerm& before,
                 const PublishedTerm& after) {
        if (before == after) return;
        const std::string what = classifier + " " + shown(before) + " became " + shown(after);
        const TermComparison terms(start_, claimsOf(inputs_, classifier, before.id));
        if (before.stateId != after.stateId) gone("state id kept", what);
        if (before.conditions != after.conditions) add(terms.kindOfConditions(before, after), what);
        if (before.targetGroup != after.targetGroup) add(terms.kindOfActions(before, after), what);
    }
    /// A term that was not there: a class map took it, or nobody had been told of it.
    void came(const std::string& classifier, const PublishedTerm& term) {
        const std::string what = classifier + " " + shown(term);
        const Claims claims = claimsOf(inputs_, classifier, term.id);
        if (isDeleted(classifier) || isDeleted(classifier + '\n' + term.id))
            add("term taken by a class map", what);
        else if (claims.isClass || claims.isConfigured)
            add("term not announced", what);
        else
            add(std::string(kUnexplained), what);
    }

    const Inputs& inputs_;
    const std::vector<std::string>& deleted_;
    Start start_;
};

}  // namespace

std::vector<Difference> differencesOf(const Published& before, const Published& after,
                                      const Inputs& inputs, const std::vector<std::string>& deleted,
                                      Start start) {
    Comparison comparison(inputs, deleted, start);
    comparison.compare(before, after);
    return std::move(comparison.differences);
}

}  // namespace Model
